// Windows that end, or are hidden, in the midst of any operation of a handler: what a program does there must
// never leave the manager with a window that is gone. Run under the address sanitizer it finds every use of one.
#include "gui/control_rig.h"

#include <functional>
#include <set>

namespace {

enum class Op : int {
    kDestroy,
    kShowToolTip,
    kHideToolTip,
    kHoverTimeout,
    kFocus,
    kBlur,
    kInset,
    kResize,
    kMove,
    kActivate,
    kDeactivate,
    kFrameMove,
    kFrameDown,
    kFrameUp,
    kFrameWheel,
    kEnter,
    kMouseMove,
    kLeave,
    kDouble,
    kDown,
    kUp,
    kWheel,
    kKeyDown,
    kKeyUp,
    kChar,
    kTick,
    kPaint,
    kNavigate,
    kActivateKey,
    kCancelKey,
    kCount
};

constexpr const char* kOpNames[] = {"Destroy",
                                    "ShowToolTip",
                                    "HideToolTip",
                                    "OnHoverTimeout",
                                    "OnFocus gained",
                                    "OnFocus lost",
                                    "GetClientInset",
                                    "OnResize",
                                    "OnMove",
                                    "OnActivate",
                                    "OnActivate false",
                                    "OnFrameMouseMove",
                                    "OnFrameMouseDown",
                                    "OnFrameMouseUp",
                                    "OnFrameMouseWheel",
                                    "OnMouseEnter",
                                    "OnMouseMove",
                                    "OnMouseLeave",
                                    "OnMouseDoubleClick",
                                    "OnMouseDown",
                                    "OnMouseUp",
                                    "OnMouseWheel",
                                    "OnKeyDown",
                                    "OnKeyUp",
                                    "OnChar",
                                    "OnTick",
                                    "OnPaint",
                                    "OnNavigate",
                                    "OnActivateKey",
                                    "OnCancelKey"};
static_assert(std::size(kOpNames) == static_cast<size_t>(Op::kCount));

constexpr const char* kVictims[] = {"itself",    "its parent",   "a sibling",
                                    "a child",   "the captured", "the focus",
                                    "the modal", "the hovered",  "the active"};

// Tells of everything it is called for, and ends itself as a control does.
class Handler : public CGhostGUIHandler {
public:
    Handler(std::function<void(Op)> whenCalled, int& aliveCount)
        : called(std::move(whenCalled))
        , alive(aliveCount) {
        ++alive;
    }
    void Destroy() override {
        called(Op::kDestroy);
        --alive;
        delete this;
    }
    void ShowToolTip(const std::wstring&) override { called(Op::kShowToolTip); }
    void HideToolTip() override { called(Op::kHideToolTip); }
    void OnHoverTimeout() override { called(Op::kHoverTimeout); }
    void OnFocus(bool gained, void*) override { called(gained ? Op::kFocus : Op::kBlur); }
    void GetClientInset(int* right, int* bottom) override {
        *right = *bottom = 1;
        called(Op::kInset);
    }
    void OnResize(int, int, int, int) override { called(Op::kResize); }
    void OnMove(int, int) override { called(Op::kMove); }
    void OnActivate(void*, bool active) override {
        called(active ? Op::kActivate : Op::kDeactivate);
    }
    void OnFrameMouseMove(int, int) override { called(Op::kFrameMove); }
    void OnFrameMouseDown(int, int, unsigned) override { called(Op::kFrameDown); }
    void OnFrameMouseUp(int, int, unsigned) override { called(Op::kFrameUp); }
    void OnFrameMouseWheel(int, int, bool) override { called(Op::kFrameWheel); }
    void OnMouseEnter() override { called(Op::kEnter); }
    void OnMouseMove(int, int) override { called(Op::kMouseMove); }
    void OnMouseLeave() override { called(Op::kLeave); }
    void OnMouseDoubleClick(int, int, unsigned) override { called(Op::kDouble); }
    void OnMouseDown(int, int, unsigned) override { called(Op::kDown); }
    void OnMouseUp(int, int, unsigned) override { called(Op::kUp); }
    void OnMouseWheel(int, int, bool) override { called(Op::kWheel); }
    void OnKeyDown(GHOSTGUIKey) override { called(Op::kKeyDown); }
    void OnKeyUp(GHOSTGUIKey) override { called(Op::kKeyUp); }
    void OnChar(unsigned) override { called(Op::kChar); }
    void OnTick(unsigned) override { called(Op::kTick); }
    void OnPaint(CGhostSurface* surface, const GUI_RECT&) override {
        called(Op::kPaint);
        surface->FillRect({0, 0, surface->Width(), surface->Height()}, 0xFF00FF00);
    }
    bool OnNavigate(GUI_DIRECTION) override {
        called(Op::kNavigate);
        return false;
    }
    bool OnActivateKey() override {
        called(Op::kActivateKey);
        return false;
    }
    bool OnCancelKey() override {
        called(Op::kCancelKey);
        return true;
    }

private:
    ~Handler() override = default;
    std::function<void(Op)> called;
    int& alive;
};

struct SITUATION {
    Op op = Op::kCount; // when
    size_t victim = 0;  // whom
    bool hide = false;  // or end it
    bool nested = false;
    bool modal = false;
    size_t times = 1; // how often it is done at most
};

class DestroyTest : public ControlTest {
protected:
    GHOSTMANAGER_WINDOW* Make(GHOSTMANAGER_WINDOW* parent, GUI_RECT place,
                              std::function<void(Op)> called) {
        GHOSTMANAGER_WINDOW* const window =
            manager.CreateWindow(parent, 0, new Handler(std::move(called), alive), false);
        GhostBorderStyle border;
        border.thickness = {6, 6, 6, 6};
        manager.SetWindowFrame(window, &border);
        manager.SetWindowPos(window, place.x, place.y, place.width, place.height);
        manager.SetTabStop(window, true);
        return window;
    }

    void Called(Op op) {
        reached.insert(op);
        if (op != now_.op || done >= now_.times) {
            return;
        }
        ++done;
        GHOSTMANAGER_WINDOW* const victims[] = {self,
                                                top,
                                                sibling,
                                                child,
                                                manager.CaptureWindow(),
                                                manager.FocusWindow(),
                                                manager.ModalWindow(),
                                                manager.HoverWindow(),
                                                manager.ActiveTopWindow()};
        GHOSTMANAGER_WINDOW* const victim = victims[now_.victim];
        now_.hide ? manager.ShowWindow(victim, false) : manager.DestroyWindow(victim);
    }

    void Step() {
        manager.Tick(1000);
        manager.CompositeAll();
        ASSERT_EQ(BrokenInvariant(), "")
            << "when " << (now_.op == Op::kCount ? "nothing" : kOpNames[static_cast<int>(now_.op)])
            << (now_.hide ? " hides " : " ends ") << kVictims[now_.victim];
    }

    void Build() {
        const auto nothing = [](Op) {};
        other = Make(nullptr, {700, 0, 200, 200}, nothing);
        top = now_.nested ? Make(nullptr, {0, 0, 600, 400}, nothing) : nullptr;
        sibling = Make(top, {350, 100, 200, 100}, nothing);
        self = Make(top, {100, 100, 200, 100}, [this](Op op) { Called(op); });
        child = Make(self, {100, 30, 50, 30}, nothing);
        manager.SetToolTipWindow(other);
        manager.SetWindowToolTip(self, L"help");
        manager.SetWindowToolTip(sibling, L"help");
        if (now_.modal) {
            manager.SetModal(now_.nested ? top : self);
        }
    }

    // The mouse, the keys, a controller and changes of the window itself, so that every operation of it is
    // called. Places are those of the window at (100, 100), framed, in a parent that is framed or not.
    void UseTheMouse() {
        const auto at = [&](int x, int y) { MoveTo(x, y), Step(); };
        at(140, 140);
        at(145, 140);
        Press(), Step();
        at(150, 140);
        Release(), Step();
        PressAgain(), Step(); // a double click
        Release(), Step();
        Wheel(true), Step();
        at(101 + (now_.nested ? 6 : 0), 140);
        Press(), Step();
        at(104, 141);
        Release(), Step();
        Wheel(false), Step();
        at(140, 140);
        manager.Tick(1100000), Step();  // rests
        manager.SetToolTipWindow(self); // the mouse goes through it from now on
        at(400, 150);
        manager.Tick(1100000), Step(); // rests over the sibling, which has a tip as well
        at(401, 150);
        at(1000, 700);
    }
    void UseKeysAndPads() {
        manager.SetFocus(self), Step();
        KeyDown(4), Step();
        KeyUp(4), Step();
        Type("a"), Step();
        manager.Navigate(GUI_DIRECTION::kRight), Step();
        manager.SetFocus(self), Step();
        manager.ActivateFocus(), Step();
        manager.CancelFocus(), Step();
        manager.SetFocus(other), Step();
        manager.SetFocus(self), Step();
    }
    void ChangeIt() {
        manager.SetWindowPos(self, 101, 100, kKeepValue, kKeepValue), Step();
        manager.SetWindowPos(self, kKeepValue, kKeepValue, 210, 110), Step();
        manager.RecalcClient(self), Step();
        manager.Invalidate(self), Step();
        manager.SetZOrder(self, -1), Step();
        manager.ShowWindow(self, false), Step();
        manager.ShowWindow(self, true), Step();
        manager.DestroyWindow(self), Step();
        Step();
    }

    void Play(const SITUATION& situation) {
        manager.Reset();
        now_ = situation;
        done = 0;
        Build();
        Step();
        UseTheMouse();
        UseKeysAndPads();
        ChangeIt();
        manager.Reset();
        EXPECT_EQ(alive, 0) << "every handler ends once";
    }

    SITUATION now_;
    size_t done = 0;
    int alive = 0;
    std::set<Op> reached;
    GHOSTMANAGER_WINDOW* top = nullptr;
    GHOSTMANAGER_WINDOW* self = nullptr;
    GHOSTMANAGER_WINDOW* sibling = nullptr;
    GHOSTMANAGER_WINDOW* child = nullptr;
    GHOSTMANAGER_WINDOW* other = nullptr;
};

using EveryOperation = DestroyTest;

} // namespace

TEST_F(EveryOperation, IsCalledByWhatTheTableDoes) {
    Play({});
    Play({Op::kCount, 0, false, true, false, 1});
    for (int op = 0; op < static_cast<int>(Op::kCount); ++op) {
        EXPECT_TRUE(reached.contains(static_cast<Op>(op))) << kOpNames[op];
    }
}

TEST_F(EveryOperation, MayEndOrHideAnyWindow) {
    for (int op = 0; op < static_cast<int>(Op::kCount); ++op) {
        for (size_t victim = 0; victim < std::size(kVictims); ++victim) {
            for (uint32_t how = 0; how < 8; ++how) {
                ASSERT_NO_FATAL_FAILURE(Play({static_cast<Op>(op), victim, (how & 1) != 0,
                                              (how & 2) != 0, (how & 4) != 0, 1}));
            }
        }
    }
}

TEST_F(EveryOperation, MayEndAnyWindowAgainAndAgain) {
    for (int op = 0; op < static_cast<int>(Op::kCount); ++op) {
        for (size_t victim = 0; victim < std::size(kVictims); ++victim) {
            ASSERT_NO_FATAL_FAILURE(
                Play({static_cast<Op>(op), victim, false, victim % 2 == 0, op % 2 == 0, 100}));
        }
    }
}
