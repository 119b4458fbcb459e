// The pictures of sessions on their way to the display, beside sessions that come and go.
#include "front/televisions.h"
#include "front/window_rig.h"
#include "host/host_data.h"
#include "host/session_list.h"

#include <future>
#include <mutex>
#include <thread>

namespace {

class TelevisionsTest : public WindowTest {
protected:
    // Until a session's picture is taken.
    static testing::AssertionResult Take(Televisions& sets) {
        return WaitUntil("a picture", [&] {
            sets.TakePictures();
            return !sets.All().empty();
        });
    }
};

} // namespace

TEST_F(TelevisionsTest, ScalingAndUploadingNeedNoLock) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    Televisions sets;
    ASSERT_TRUE(Take(sets));
    std::promise<void> held;
    std::promise<void> uploaded;
    std::thread other([&] {
        const std::scoped_lock list(SessionListLock());
        const std::scoped_lock frames(EmuFrameMutex());
        held.set_value();
        uploaded.get_future().wait();
    });
    held.get_future().wait();
    EXPECT_TRUE(sets.UploadTaken(kFrontTelevision, PictureScaler::kSoft4x));
    uploaded.set_value();
    other.join();
    EXPECT_NE(sets.Picture(kFrontTelevision).texture.glTexture, 0u);
    EXPECT_EQ(sets.Picture(kFrontTelevision).factor, 4u);
    sets.End();
}

TEST_F(TelevisionsTest, ATakenPictureOutlivesItsSession) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    Televisions sets;
    ASSERT_TRUE(Take(sets));
    application.TurnOff();
    EXPECT_TRUE(sets.UploadTaken(kFrontTelevision, PictureScaler::kNone));
    EXPECT_NE(sets.Picture(kFrontTelevision).texture.glTexture, 0u);
    EXPECT_EQ(sets.PicturesShown(), 1u);
    EXPECT_TRUE(sets.Upload(kFrontTelevision, PictureScaler::kNone)) << "the set has gone dark";
    EXPECT_TRUE(sets.All().empty());
    EXPECT_FALSE(sets.Upload(kFrontTelevision, PictureScaler::kNone));
}

TEST_F(TelevisionsTest, APictureIsUploadedOnce) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    Televisions sets;
    ASSERT_TRUE(Take(sets));
    EXPECT_TRUE(sets.UploadTaken(kFrontTelevision, PictureScaler::kNone));
    EXPECT_FALSE(sets.UploadTaken(kFrontTelevision, PictureScaler::kNone));
    EXPECT_EQ(sets.PicturesShown(), 1u);
    sets.End();
}
