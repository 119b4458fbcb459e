// Faults that nobody had time to read, told again at the next start.
//
// A window that is closed at once takes its notices along, and of a program that was not started from a
// terminal nobody sees the standard error. So what stood in the window for less than its time, or came
// when the window was gone, is kept in `.\unread.txt`, one fault a line.
// Thread: main. Failure: a file that can't be written or read loses the words; nothing is reported.
#pragma once

// Posts what the last run has kept, and forgets it.
void TellUnreadNotices();
// Keeps the faults that are unread now. Without any there is no file.
void KeepUnreadNotices();
