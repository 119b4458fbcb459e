// `ombrelune` without arguments: the whole program in its window.
#include "front/application.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/play.h"
#include "front/unread_notices.h"

#include <SDL.h>

int DesktopCommand() {
    Application application;
    std::string error;
    if (!application.Start(error)) {
        if (SDL_GetHint(SDL_HINT_VIDEODRIVER) != nullptr) {
            Complain(error);
            return kExitDone; // as every end of the desktop program: no script reads its value
        }
        return PlayWithoutGame(); // there is no display, and that shows something all the same
    }
    TellUnreadNotices();
    application.ShowProgram();
    while (application.Round()) {
    }
    application.Stop();
    KeepUnreadNotices();
    return kExitDone;
}
