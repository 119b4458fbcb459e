// Faults that nobody had time to read, shown again at the next start.
//
// A window that is closed at once takes its notices along, and the standard error of a program started
// without a terminal is not seen. So a fault that was shown for less than its time, or came after the
// window closed, is kept in `.\unread.txt`, one fault a line.
// Thread: main. Failure: if the file can't be written or read, the faults are lost; nothing is
// reported.
#pragma once

// Posts what the last run has kept, and deletes the file.
void TellUnreadNotices();
// Writes the unread faults to the file. Without any it writes no file.
void KeepUnreadNotices();
