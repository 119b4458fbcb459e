#include "screens/member_panel.h"

#include "base/files.h"
#include "base/text.h"
#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/edit.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/text_box.h"
#include "screens/screen_host.h"
#include "settings/settings.h"

namespace {

// Units.
constexpr int32_t kLeft = 20;
constexpr int32_t kTop = 70;
constexpr int32_t kWidth = 350;
constexpr int32_t kRow = 25;
constexpr int32_t kOutHeight = 180;
constexpr int32_t kInHeight = 200;
constexpr int32_t kPlaceTop = kTop + kRow + kInHeight + 10; // of the service's address
constexpr int32_t kPlaceHeight = 90;
constexpr int32_t kLabel = 80;
constexpr int32_t kButton = 100;

constexpr const wchar_t* kStartSetting = L"login_connectstartup";
constexpr const wchar_t* kServiceSetting = L"web_service";
constexpr const wchar_t* kImagesSetting = L"web_images";
constexpr const wchar_t* kScheme = L"http://";
constexpr const wchar_t* kNoAddressNote = L"Do your friends run one? Enter its address here.";
constexpr const char* kKeyFile = ".\\member.key";

constexpr const wchar_t* kHelp =
    L"Drop game files or folders on this window: they join your library, and a game alone is "
    L"played at once.\n\n"
    L"PLAY GAMES lists what you have. In the room, each television plays a game of its own.\n\n"
    L"F10 leads back here from anywhere.";

SERVICE_ADDRESSES ServiceOfSettings() {
    return {Settings().GetString(kServiceSetting), Settings().GetString(kImagesSetting)};
}

} // namespace

MemberPanel::MemberPanel(GHOSTMANAGER_WINDOW* parent, ScreenHost& program)
    : host(program)
    , header(new CGhostTextBox(parent, 0, L"LARGEHEADERTEXT", L"Member Login", {}))
    , out(new CGhostTextBox(parent, 0, L"WINDOWOVERLAY", L"", {}))
    , in(new CGhostTextBox(parent, 0, L"WINDOWOVERLAY", L"", {}))
    , help(new CGhostMultiText(parent, 0, L"WINDOWOVERLAY", kHelp, {}))
    , placeHeader(new CGhostTextBox(parent, 0, L"LARGEHEADERTEXT", L"Web service", {}))
    , place(new CGhostTextBox(parent, 0, L"WINDOWOVERLAY", L"", {}))
    , member(host.Downloads(), ResolvePath(kKeyFile)) {
    MakeLogin();
    MakeMember();
    MakeAddress();
    member.changed = [this] { ShowState(); };
    ShowState();
}

MemberPanel::~MemberPanel() {
    CGhostManager& manager = CGhostManager::Get();
    for (GHOSTMANAGER_WINDOW* const window : {header->window, out->window, in->window, help->window,
                                              placeHeader->window, place->window}) {
        manager.DestroyWindow(window);
    }
}

void MemberPanel::MakeLogin() {
    GHOSTMANAGER_WINDOW* const within = out->window;
    userLabel = new CGhostTextBox(within, 0, L"TEXT_RIGHT", L"User: ", {});
    user = new CGhostEdit(within, 0, L"EDIT", L"", CGhostEdit::kSubmits, {});
    passwordLabel = new CGhostTextBox(within, 0, L"TEXT_RIGHT", L"Password: ", {});
    password =
        new CGhostEdit(within, 0, L"EDIT", L"", CGhostEdit::kSubmits | CGhostEdit::kSecret, {});
    remember = new CGhostCheckBox(within, 0, L"CHECKBOX", L"Log in at every start", 0, {});
    remember->SetChecked(Settings().GetBool(kStartSetting));
    loginButton = new CGhostButton(within, 0, L"BUTTON", L"Login", 0, {});
    state = new CGhostMultiText(within, 0, L"TEXT", L"", {});
    user->SetMaxLength(64);
    password->SetMaxLength(128);
    loginButton->SetToolTip(L"The password itself is never sent.");
    remember->SetToolTip(
        L"Keeps a key in place of the password, in a file that only you can read.");
    const auto submit = [this](CGhostEdit*, bool taken) {
        if (taken) {
            PressLogin();
        }
    };
    signals.Watch(user->OnSubmit, submit);
    signals.Watch(password->OnSubmit, submit);
    signals.Watch(loginButton->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { PressLogin(); });
}

void MemberPanel::MakeMember() {
    account = new CGhostMultiText(in->window, 0, L"TEXT", L"", {});
    logoutButton = new CGhostButton(in->window, 0, L"BUTTON", L"Logout", 0, {});
    logoutButton->SetToolTip(L"Logs out, and forgets the key that this computer has kept.");
    signals.Watch(logoutButton->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { PressLogout(); });
}

void MemberPanel::MakeAddress() {
    GHOSTMANAGER_WINDOW* const within = place->window;
    address = new CGhostEdit(within, 0, L"EDIT", Settings().GetString(kServiceSetting),
                             CGhostEdit::kSubmits, {});
    connectButton = new CGhostButton(within, 0, L"BUTTON", L"Connect", 0, {});
    addressNote =
        new CGhostMultiText(within, 0, L"TEXT", address->Text().empty() ? kNoAddressNote : L"", {});
    address->SetMaxLength(200);
    address->SetToolTip(L"Such as http://our-computer:8080/, from whoever runs it; empty: none");
    connectButton->SetToolTip(L"Keeps the address, and asks the service for its news");
    signals.Watch(address->OnSubmit, [this](CGhostEdit*, bool taken) {
        if (taken) {
            PressConnect();
        }
    });
    signals.Watch(connectButton->OnClick,
                  [this](CGhostButton*, int, int, unsigned) { PressConnect(); });
}

void MemberPanel::Layout() {
    header->SetPos(kLeft, kTop, kWidth, kRow);
    out->SetPos(kLeft, kTop + kRow, kWidth, kOutHeight);
    in->SetPos(kLeft, kTop + kRow, kWidth, kInHeight);
    help->SetPos(kLeft, kTop + kRow, kWidth, kOutHeight);
    const int32_t inner = out->window->clientRect.width;
    const int32_t field = inner - kLabel - 20;
    userLabel->SetPos(8, 8, kLabel, kRow);
    user->SetPos(kLabel + 10, 8, field, kRow);
    passwordLabel->SetPos(8, 40, kLabel, kRow);
    password->SetPos(kLabel + 10, 40, field, kRow);
    remember->SetPos(kLabel + 10, 72, field, kRow);
    loginButton->SetPos(kLabel + 10, 104, kButton, kRow);
    state->SetPos(8, 134, inner - 16, out->window->clientRect.height - 138);
    placeHeader->SetPos(kLeft, kPlaceTop, kWidth, kRow);
    place->SetPos(kLeft, kPlaceTop + kRow, kWidth, kPlaceHeight);
    address->SetPos(8, 8, inner - kButton - 26, kRow);
    connectButton->SetPos(inner - kButton - 8, 8, kButton, kRow);
    addressNote->SetPos(8, 40, inner - 16, place->window->clientRect.height - 44);
    account->SetPos(8, 8, inner - 16, in->window->clientRect.height - 56);
    logoutButton->SetPos(8, in->window->clientRect.height - 36, kButton, kRow);
}

void MemberPanel::SetVisible(bool visible) {
    if (visible && !shown) {
        member.Check();
    }
    shown = visible;
    ShowState();
}

void MemberPanel::Update() {
    member.Update();
}

void MemberPanel::LoginAtStart() {
    if (Settings().GetBool(kStartSetting)) {
        static_cast<void>(member.LoginWithKey(ServiceOfSettings())); // without keys the fields wait
    }
}

void MemberPanel::ShowState() {
    const bool service = !ServiceOfSettings().service.empty();
    const bool focusWasIn = [&] {
        const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
        return focus != nullptr && (focus == loginButton->window || focus == password->window ||
                                    focus == user->window || focus == logoutButton->window);
    }();
    const bool loggedIn = member.IsLoggedIn();
    const bool waits = !loggedIn && member.CurrentState() != MemberLogin::State::kOut;
    header->SetText(service ? L"Member Login" : L"Your games");
    header->SetVisible(shown);
    help->SetVisible(shown && !service);
    out->SetVisible(shown && service && !loggedIn);
    in->SetVisible(shown && service && loggedIn);
    placeHeader->SetVisible(shown);
    place->SetVisible(shown);
    loginButton->SetCaption(waits ? L"Cancel" : L"Login");
    state->SetText(waits ? L"Logging in..." : member.Error().empty() ? L"" : member.Error());
    std::wstring text = L"Logged in as " + member.Credentials().name + L".";
    for (const std::wstring& more : {member.Account(), member.Error()}) {
        text += more.empty() ? L"" : L"\n" + more;
    }
    account->SetText(text);
    if (focusWasIn && shown) {
        if (loggedIn) {
            logoutButton->SetFocus();
        } else if (!waits) {
            password->SetFocus();
        }
    }
}

void MemberPanel::PressLogin() {
    if (member.CurrentState() != MemberLogin::State::kOut) {
        member.Logout(); // the attempt ends
        return;
    }
    Settings().SetBool(kStartSetting, remember->IsChecked());
    host.SaveSettings();
    if (!remember->IsChecked()) {
        member.ForgetKey();
    }
    std::string secret = Utf8FromWide(password->Text());
    password->SetText(L"");
    member.Login(ServiceOfSettings(), user->Text(), secret, remember->IsChecked());
    WipeSecret(secret);
}

// Pictures come from the same place; who has them elsewhere says so in the settings' file.
void MemberPanel::PressConnect() {
    std::wstring text = address->Text();
    std::erase(text, L' ');
    if (!text.empty() && text.find(L"://") == std::wstring::npos) {
        text.insert(0, kScheme);
    }
    if (!text.empty() && !text.starts_with(kScheme)) {
        addressNote->SetText(std::wstring(kBadServiceAddress));
        return;
    }
    address->SetText(text);
    member.Logout();
    Settings().SetString(kServiceSetting, text);
    Settings().SetString(kImagesSetting, text);
    host.SaveSettings();
    ShowState();
    addressNote->SetText(text.empty() ? kNoAddressNote : L"");
    LoginAtStart();
    if (serviceChanged) {
        serviceChanged();
    }
}

void MemberPanel::PressLogout() {
    member.Logout();
    member.ForgetKey();
    remember->SetChecked(false);
    Settings().SetBool(kStartSetting, false);
    host.SaveSettings();
}
