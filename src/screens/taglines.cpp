#include "screens/taglines.h"

const std::array<const wchar_t*, kTaglines>& Taglines() {
    static constexpr std::array<const wchar_t*, kTaglines> kLines = {
        L"Now with up to nine lives. Cat not included.",
        L"Please blow into the computer before you start.",
        L"You have not saved since 1989.",
        L"Dinner is ready. You have heard that before.",
        L"Player two is still holding the controller that isn't plugged in.",
        L"The batteries will last until the last level. They always do.",
        L"Sit a little further from the screen, will you?",
        L"Three more minutes, then homework.",
        L"The password was on the back of the phone bill.",
        L"Somebody always picks the yellow one.",
        L"No magazine was torn apart for the map in the middle.",
        L"Down, down, left, up, and hope.",
        L"The water level is exactly where you left it.",
        L"It is not cheating if your brother told you.",
        L"Loading takes no time. We could add some, if you miss it.",
        L"One continue left, and it's your sister's turn.",
        L"The moon has no dark side, only one that is not plugged in.",
    };
    return kLines;
}
