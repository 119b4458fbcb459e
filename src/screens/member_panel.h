// MemberPanel: the main menu's place for the member of a web service.
//
//   no service is set    how games are added
//   nobody is logged in  name, password and the button to log in
//   a member is          who it is, and the button to log out
// Below it is the service's address, which the player may change at any time.
// A member who wants it is logged in by kept keys at the next start (`login_connectstartup`). Logging out forgets
// them; the end of the program does not.
//
// Thread: main. Units: those of the virtual screen, within the main window's client area.
#pragma once

#include "screens/screen_panel.h"
#include "web/member_login.h"

#include <functional>

class CGhostButton;
class CGhostCheckBox;
class CGhostEdit;
class CGhostMultiText;
class CGhostTextBox;
class ScreenHost;

class MemberPanel {
public:
    MemberPanel(GHOSTMANAGER_WINDOW* parent, ScreenHost& program);
    ~MemberPanel();
    MemberPanel(const MemberPanel&) = delete;
    MemberPanel& operator=(const MemberPanel&) = delete;

    void Layout();
    void SetVisible(bool visible);
    void Update(); // once a round
    // With the kept keys, if the member wants that.
    void LoginAtStart();

    // Runs when the player has entered another service. May be empty.
    std::function<void()> serviceChanged;

    [[nodiscard]] MemberLogin& Member() { return member; }
    [[nodiscard]] const MemberLogin& Member() const { return member; }
    [[nodiscard]] const CGhostTextBox* Header() const { return header; }
    [[nodiscard]] CGhostEdit* User() const { return user; }
    [[nodiscard]] CGhostEdit* Password() const { return password; }
    [[nodiscard]] CGhostCheckBox* Remember() const { return remember; }
    [[nodiscard]] CGhostButton* LoginButton() const { return loginButton; }
    [[nodiscard]] CGhostButton* LogoutButton() const { return logoutButton; }
    [[nodiscard]] const CGhostMultiText* State() const { return state; }
    [[nodiscard]] const CGhostMultiText* Account() const { return account; }
    [[nodiscard]] CGhostTextBox* LoginBox() const { return out; }
    [[nodiscard]] CGhostTextBox* MemberBox() const { return in; }
    [[nodiscard]] CGhostMultiText* Help() const { return help; }
    [[nodiscard]] CGhostEdit* Address() const { return address; }
    [[nodiscard]] CGhostButton* ConnectButton() const { return connectButton; }
    [[nodiscard]] const CGhostMultiText* AddressNote() const { return addressNote; }

private:
    void MakeLogin();
    void MakeMember();
    void ShowState();
    void PressLogin();
    void PressLogout();
    void MakeAddress();
    void PressConnect();

    ScreenHost& host;
    CGhostTextBox* header;
    CGhostTextBox* out;
    CGhostTextBox* in;
    CGhostMultiText* help;
    CGhostTextBox* placeHeader;
    CGhostTextBox* place; // of the service's address
    CGhostEdit* address = nullptr;
    CGhostButton* connectButton = nullptr;
    CGhostMultiText* addressNote = nullptr;
    CGhostTextBox* userLabel = nullptr;
    CGhostEdit* user = nullptr;
    CGhostTextBox* passwordLabel = nullptr;
    CGhostEdit* password = nullptr;
    CGhostCheckBox* remember = nullptr;
    CGhostButton* loginButton = nullptr;
    CGhostMultiText* state = nullptr;
    CGhostMultiText* account = nullptr;
    CGhostButton* logoutButton = nullptr;
    bool shown = false;
    ScreenSignals signals;
    MemberLogin member; // last: its signals use the rest
};
