// The index of a program that may not write, that runs out of disk or is killed, and of two programs.
#include "library/index_fixture.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <random>

namespace {

// A child that hangs is killed by its own alarm, so that no wait is endless.
constexpr unsigned kLongestChild = 120; // seconds

pid_t StartChild(const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(kLongestChild);
        _exit(work() && !testing::Test::HasFailure() ? 0 : 1);
    }
    return child;
}

bool EndsWell(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class LibraryProcess : public Library { // NOLINT(readability-identifier-naming): a test's name
protected:
    void PutMany(int count) {
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(1000 + i);
            Put(number + ".game", "Title " + number);
            titles[number + ".game"] = "Title " + number;
        }
    }
    // A scan that must find every title, whether there is a database or not.
    bool ScansRight(uint64_t* filesRead = nullptr) {
        LibraryIndex index;
        std::string ignored;
        (void)index.Open(Database(), ignored);
        return ScanWith(index, filesRead) == titles;
    }

    std::map<std::string, std::string> titles;
};

// Root may write everywhere.
bool BecomeNobody() {
    constexpr uid_t kNobody = 65534;
    return geteuid() != 0 || setuid(kNobody) == 0;
}

} // namespace

TEST_F(LibraryProcess, AHomeThatMayNotBeWrittenIsScannedWithoutADatabase) {
    PutMany(5);
    fs::permissions(home.Path(), fs::perms(0555));
    EXPECT_TRUE(EndsWell(StartChild([&] {
        LibraryIndex index;
        std::string error;
        return BecomeNobody() && !index.Open(Database(), error) && ScanWith(index) == titles;
    })));
    fs::permissions(home.Path(), fs::perms(0755));
    EXPECT_FALSE(fs::exists(Database()));
}

TEST_F(LibraryProcess, ADatabaseThatMayNotBeWrittenIsRead) {
    PutMany(5);
    (void)Scan();
    Put("new.game", "Title new");
    titles["new.game"] = "Title new";
    const auto before = home.Read(kDatabase);
    fs::permissions(home.Path(), fs::perms(0555));
    fs::permissions(Database(), fs::perms(0444));
    EXPECT_TRUE(EndsWell(StartChild([&] {
        uint64_t filesRead = 0;
        return BecomeNobody() && ScansRight(&filesRead) && filesRead == 1;
    })));
    fs::permissions(home.Path(), fs::perms(0755));
    EXPECT_EQ(home.Read(kDatabase), before);
}

TEST_F(LibraryProcess, ADamagedDatabaseThatMayNotBeWrittenStaysAndIsNotUsed) {
    PutMany(5);
    home.Write(kDatabase, std::string(50'000, 'x'));
    const auto before = home.Read(kDatabase);
    fs::permissions(home.Path(), fs::perms(0555));
    fs::permissions(Database(), fs::perms(0444));
    EXPECT_TRUE(EndsWell(StartChild([&] { return BecomeNobody() && ScansRight(); })));
    fs::permissions(home.Path(), fs::perms(0755));
    EXPECT_EQ(home.Read(kDatabase), before);
}

TEST_F(LibraryProcess, ADiskThatFillsUpCostsOnlyTheIndex) {
    PutMany(300);
    // No file may grow over the limit, as on a disk that fills up while it is written.
    constexpr rlim_t kLimits[] = {0, 100, 16'384, 20'000, 100'000};
    for (const rlim_t limit : kLimits) {
        EXPECT_TRUE(EndsWell(StartChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limits{limit, limit};
            return setrlimit(RLIMIT_FSIZE, &limits) == 0 && ScansRight() && ScansRight();
        }))) << limit;
        EXPECT_TRUE(ScansRight()) << limit;
        uint64_t filesRead = 1;
        EXPECT_TRUE(ScansRight(&filesRead)) << limit;
        EXPECT_EQ(filesRead, 0U) << "with room again, after a limit of " << limit;
        fs::remove(Database());
    }
}

TEST_F(LibraryProcess, AProgramThatIsKilledLeavesAUsableDatabase) {
    constexpr int kRounds = 100;
    PutMany(200);
    for (int round = 0; round < kRounds; ++round) {
        std::mt19937 random(static_cast<unsigned>(round));
        std::uniform_int_distribution<useconds_t> moment(0, 12'000);
        const pid_t child = StartChild([&] {
            for (int scan = 0; scan < 1000; ++scan) {
                (void)ScansRight();
                std::error_code ignored;
                fs::remove(Database(), ignored);
            }
            return true;
        });
        usleep(moment(random));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(ScansRight()) << "round " << round;
        uint64_t filesRead = 1;
        ASSERT_TRUE(ScansRight(&filesRead)) << "round " << round;
        ASSERT_EQ(filesRead, 0U) << "round " << round;
    }
}

TEST_F(LibraryProcess, TwoProgramsMayScanAtOnce) {
    constexpr int kRounds = 30;
    PutMany(200);
    const auto scanOften = [&] {
        bool right = true;
        for (int round = 0; round < kRounds; ++round) {
            right &= ScansRight();
            if (round % 7 == 3) {
                std::error_code ignored;
                fs::remove(Database(), ignored);
            }
        }
        return right;
    };
    const pid_t one = StartChild(scanOften);
    const pid_t other = StartChild(scanOften);
    EXPECT_TRUE(EndsWell(one));
    EXPECT_TRUE(EndsWell(other));
    EXPECT_TRUE(ScansRight());
    uint64_t filesRead = 1;
    EXPECT_TRUE(ScansRight(&filesRead));
    EXPECT_EQ(filesRead, 0U);
}
