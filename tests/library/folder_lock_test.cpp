#include "library/folder_lock.h"
#include "library/game_folder.h"

#include "support/least_images.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// A process that holds a folder's lock until it is killed.
class Holder {
public:
    explicit Holder(const fs::path& folder) {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        process = fork();
        if (process == 0) {
            FolderLock lock;
            std::string error;
            const char taken = lock.Take(folder, error) ? 'y' : 'n';
            (void)!write(ends[1], &taken, 1);
            while (true) {
                pause();
            }
        }
        char taken = 'n';
        EXPECT_EQ(read(ends[0], &taken, 1), 1);
        EXPECT_EQ(taken, 'y');
        close(ends[0]);
        close(ends[1]);
    }
    ~Holder() { Kill(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void Kill() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
        dead = process > 0 ? process : dead;
        process = 0;
    }
    [[nodiscard]] std::string Number() const {
        return std::to_string(process > 0 ? process : dead);
    }

private:
    pid_t process = 0;
    pid_t dead = 0;
};

} // namespace

TEST(FolderLock, OneAtATimeInOneProcess) {
    TemporaryFolder folder;
    FolderLock first;
    FolderLock second;
    std::string error;
    ASSERT_TRUE(first.Take(folder.Path(), error)) << error;
    EXPECT_FALSE(second.Take(folder.Path(), error));
    EXPECT_EQ(error, folder.Path().string() + ": is being converted by process " +
                         std::to_string(getpid()));
    first.Release();
    EXPECT_TRUE(fs::is_empty(folder.Path()));
    EXPECT_TRUE(second.Take(folder.Path(), error)) << error;
    TemporaryFolder other;
    EXPECT_TRUE(first.Take(other.Path(), error)) << "another folder has its own";
}

TEST(FolderLock, OneAtATimeAmongProcesses) {
    TemporaryFolder folder;
    Holder holder(folder.Path());
    FolderLock lock;
    std::string error;
    EXPECT_FALSE(lock.Take(folder.Path(), error));
    EXPECT_THAT(error, HasSubstr("by process " + holder.Number()));
}

TEST(FolderLock, OfAKilledProcessIsTakenOver) {
    TemporaryFolder folder;
    Holder holder(folder.Path());
    const std::string writing = "game.game.tmp-" + holder.Number() + "-7";
    folder.Write(writing, "half a game");
    folder.Write("other.game.tmp-1-7", "of another process");
    folder.Write("game.tmp-" + holder.Number(), "not ours");
    holder.Kill();
    EXPECT_EQ(folder.Read(kFolderLockName), Text(holder.Number() + "\n")) << "it is still there";
    FolderLock lock;
    std::string error;
    EXPECT_TRUE(lock.Take(folder.Path(), error)) << error;
    EXPECT_FALSE(fs::exists(folder.Path() / writing)) << "what it was writing is gone";
    EXPECT_TRUE(fs::exists(folder.Path() / "other.game.tmp-1-7"));
    EXPECT_TRUE(fs::exists(folder.Path() / ("game.tmp-" + holder.Number())));
    EXPECT_EQ(folder.Read(kFolderLockName), Text(std::to_string(getpid()) + "\n"));
}

TEST(FolderLock, StaleFileOfALivingProcessNumberIsTakenOver) {
    TemporaryFolder folder;
    folder.Write(kFolderLockName, "1\n"); // the number of a process that lives and never held it
    FolderLock lock;
    std::string error;
    EXPECT_TRUE(lock.Take(folder.Path(), error)) << error;
}

TEST(FolderLock, KeepsAConversionOut) {
    GameFolder folder(5);
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    FolderLock lock;
    std::string error;
    ASSERT_TRUE(lock.Take(folder.Path(), error)) << error;
    EXPECT_EQ(folder.Convert(), ConversionEnd::kLocked);
    EXPECT_TRUE(folder.LoggedOf(folder.Path().string(), "is being converted by process"));
    EXPECT_EQ(folder.Read("a.nes"), Noise(1, kLeastNesImage));
    lock.Release();
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.game"));
}
