// Scores: the tables of each player, and what is refused with which line.

#include "demo_tables/score.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::HasSubstr;

class Score : public ::testing::Test {
protected:
    std::string Convert(const std::string& score) {
        std::string text;
        error.clear();
        return ConvertScore(folder.Write("a.score", score), text, error) ? text : "";
    }

    TemporaryFolder folder;
    std::string error;
};

TEST_F(Score, IsPairsForTheNes) {
    EXPECT_EQ(Convert("# A tune.\n"
                      "player nes\nsong kTune\nstep 9\nduties 0x80 64\n"
                      "track lead\n  C-2:2 C#4 Db4:1\n  B-6 R\n  again\n"
                      "track chords\n  R:64 again\n"
                      "track bass\n  R:64 again\n"
                      "track drums\n  kick:2 hat+kick:1 again\n"),
              "static const u8 kTune_lead[] = {\n    C2, 2, Cs4, 2, Cs4, 1,\n    B6, 1, 0, 1,\n"
              "    kTrackLoop\n};\n"
              "static const u8 kTune_chords[] = {\n    0, 64,\n    kTrackLoop\n};\n"
              "static const u8 kTune_bass[] = {\n    0, 64,\n    kTrackLoop\n};\n"
              "static const u8 kTune_drums[] = {\n    kKick, 2, kKick | kHat, 1,\n"
              "    kTrackLoop\n};\n"
              "const SONG kTune = {{kTune_lead, kTune_chords, kTune_bass, kTune_drums}, 9, "
              "{128, 64}};\n");
}

TEST_F(Score, IsPairsThatMayEndForTheMasterSystem) {
    EXPECT_EQ(Convert("player master-system\nsong kTune\nstep 9\nvoices 1 2 3\n"
                      "track a\n  E-3:1 end\ntrack b\n  end\ntrack c\n  end\n"
                      "track d\n  tom+cymbal:4 end\n"),
              "static const uint8_t kTune_a[] = {\n    E3, 1,\n    kTrackEnd\n};\n"
              "static const uint8_t kTune_b[] = {\n    kTrackEnd\n};\n"
              "static const uint8_t kTune_c[] = {\n    kTrackEnd\n};\n"
              "static const uint8_t kTune_d[] = {\n    kTom | kCymbal, 4,\n    kTrackEnd\n};\n"
              "const Song kTune = {{kTune_a, kTune_b, kTune_c, kTune_d}, 9, {1, 2, 3}};\n");
}

TEST_F(Score, IsStringsForTheTunePlayer) {
    EXPECT_EQ(Convert("player tune\nsong tune\nstep 6\nattenuation 4 5 15\ndecay 1 2 3\n"
                      "track lead\n  A-4:2 A#4:1 R\n  Bb4:3\n  again\n"
                      "track drums\n  kick:2 snare:1 hat R:2 again\n"),
              "static const TUNE tune = {\n"
              "    {\n    \"A4--a4..\"\n    \"a4----\", 0, 0},\n"
              "    \n    \"k.sh..\",\n"
              "    {4, 5, 15}, {1, 2, 3}, 6\n};\n");
}

TEST_F(Score, IsStreamsForTheMegaDrive) {
    EXPECT_EQ(
        Convert("player mega-drive\nsong day\nstep 7\n"
                "phrase BassD\n  D-2:8 A-2:4 D-3\n"
                "track Bass\n  voice=0 level=2 pan=0x80\n  loop\n  @BassD @BassD\n  again\n"
                "track Drums\n  3x( kick:4 snare )\n  tom:8 R again\n"
                "track Hats\n  move=-9 noise4:2 end\n"),
        "dayStep = 7\n"
        "dayBassD:\n    length 8\n    .db 26\n    length 4\n    .db 33\n    .db 38\n    back\n"
        "dayBass:\n    voice 0\n    level 2\n    pan 128\n"
        "dayBassLoop:\n    phrase dayBassD\n    phrase dayBassD\n    again dayBassLoop\n"
        "dayDrums:\n    times 3\n"
        "dayDrumsRepeat1:\n    length 4\n    .db 0\n    .db 1\n    until dayDrumsRepeat1\n"
        "    length 8\n    .db 2\n    .db 96\n    again dayDrums\n"
        "dayHats:\n    move -9\n    length 2\n    .db 4\n    finish\n");
}

TEST_F(Score, WritesALengthWhereItIsSaidAndNowhereElse) {
    // Said twice, it costs a byte twice: the stream is what the score says.
    EXPECT_EQ(Convert("player mega-drive\ntrack a\n  C-4:2 C-4:2 C-4 end\n"),
              "a:\n    length 2\n    .db 48\n    length 2\n    .db 48\n    .db 48\n    finish\n");
}

struct FAULTY {
    const char* score;
    const char* error;
};

TEST_F(Score, NamesTheLineThatIsWrong) {
    const FAULTY rows[] = {
        {"song a\ntrack b\n  end\n",                                      "a.score:1: a line 'player'"                 },
        {"player piano\ntrack b\n  end\n",                                "a.score:1: a line 'player'"                 },
        {"player nes\n",                                                  "a.score:1: the score ends without a track"  },
        {"player mega-drive\ntrack a\n  H-4:2 end\n",                     "a.score:3: 'H-4:2' is no note"              },
        {"player mega-drive\ntrack a\n  C4:2 end\n",                      "a.score:3: 'C4:2' is no note"               },
        {"player mega-drive\ntrack a\n  E#4:2 end\n",                     "a.score:3: 'E#4:2' is no note"              },
        {"player mega-drive\ntrack a\n  Cb4:2 end\n",                     "a.score:3: 'Cb4:2' is no note"              },
        {"player mega-drive\ntrack a\n  C-8:2 end\n",                     "a.score:3: 'C-8:2' is no note"              },
        {"player mega-drive\ntrack a\n  noise8:2 end\n",                  "a.score:3: 'noise8:2' is no note"           },
        {"player mega-drive\ntrack a\n  kick+gong:2 end\n",               "a.score:3: 'kick+gong:2' is no"             },
        {"player mega-drive\ntrack a\n  kick+:2 end\n",                   "a.score:3: 'kick+:2' is no"                 },
        {"player mega-drive\ntrack a\n  C-4:0 end\n",                     "a.score:3: 'C-4:0': a length is 1 to 64"    },
        {"player mega-drive\ntrack a\n  C-4:65 end\n",                    "a.score:3: 'C-4:65': a length is 1 to 64"   },
        {"player mega-drive\ntrack a\n  C-4: end\n",                      "a.score:3: 'C-4:': a length is 1 to 64"     },
        {"player mega-drive\ntrack a\n  C-4 end\n",                       "a.score:3: 'C-4' needs a length"            },
        {"player mega-drive\nphrase p\n  C-4:2\ntrack a\n  @p C-4 end\n",
         "a.score:5: 'C-4' needs a length"                                                                             },
        {"player mega-drive\ntrack a\n  C-4:2\n",                         "a.score:3: track 'a' needs 'again' or 'end'"},
        {"player mega-drive\ntrack a\n  end\n  C-4:2\n",                  "a.score:4: 'C-4:2' after the end"           },
        {"player mega-drive\nphrase a\n  C-4:2 end\n",                    "a.score:3: a phrase ends by itself"         },
        {"player mega-drive\ntrack a\n  end\ntrack a\n  end\n",           "a.score:4: a second 'a'"                    },
        {"player mega-drive\ntrack a b\n",                                "a.score:2: a track has one name"            },
        {"player mega-drive\ntrack a\n  @b end\n",                        "a.score:3: no phrase 'b'"                   },
        {"player mega-drive\ntrack a\n  loop loop end\n",                 "a.score:3: a second 'loop'"                 },
        {"player mega-drive\ntrack a\n  ) end\n",                         "a.score:3: ')' without a '('"               },
        {"player mega-drive\ntrack a\n  2x( C-4:2\n  end\n",              "a.score:4: ')' is missing"                  },
        {"player mega-drive\ntrack a\n  1x( end\n",                       "a.score:3: '1x(': 2 to 255 times"           },
        {"player mega-drive\ntrack a\n  voice=x end\n",                   "a.score:3: 'x' is no number"                },
        {"player mega-drive\ntrack a\n  tune=3 end\n",                    "a.score:3: 'tune' is not one of voice"      },
        {"player mega-drive\ntrack a\n  hat:3 end\n",                     "a.score:3: this player has kick"            },
        {"player mega-drive\nsong a\ntrack a\n  end\n",
         "a.score:1: 'step' takes a number from 1 to 255"                                                              },
        {"player mega-drive\nsong a\nstep 0\ntrack a\n  end\n",           "a.score:3: 'step' takes a number"           },
        {"player mega-drive\nduties 1 2\ntrack a\n  end\n",               "a.score:2: 'duties' is unknown"             },
        {"player mega-drive\nplayer nes\ntrack a\n  end\n",               "a.score:2: a second 'player'"               },
    };
    for (const FAULTY& row : rows) {
        EXPECT_EQ(Convert(row.score), "") << row.score;
        EXPECT_THAT(error, HasSubstr(row.error)) << row.score;
    }
}

TEST_F(Score, NamesTheLineOfWhatAPlayerCannotDo) {
    const std::string nes = "player nes\nsong a\nstep 9\nduties 1 2\n";
    const std::string silent = "track b\n  again\ntrack c\n  again\ntrack d\n  again\n";
    const std::string tune = "player tune\nsong a\nstep 9\nattenuation 1 2 3\ndecay 1 2 3\n";
    const std::pair<std::string, const char*> rows[] = {
        {nes + "track a\n  C-1:2 again\n" + silent,   "a.score:6: here this player takes notes"         },
        {nes + "track a\n  C-7:2 again\n" + silent,   "a.score:6: here this player takes notes"         },
        {nes + "track a\n  kick:2 again\n" + silent,  "a.score:6: here this player takes notes"         },
        {nes + "track a\n  voice=1 again\n" + silent, "a.score:6: here this player takes notes"         },
        {nes + "track a\n  end\n" + silent,           "a.score:6: this player plays every track again"  },
        {nes + "phrase a\n" + silent,                 "a.score:5: this player has no phrases"           },
        {nes + silent,                                "a.score:1: a song has a name, three tracks"      },
        {nes + silent + "track a\n  C-4:1 again\n",   "a.score:12: here this player takes its drums"    },
        {nes + silent + "track a\n  tom:1 again\n",   "a.score:12: here this player takes its drums"    },
        {tune + "track a\n  G-2:1 again\n",           "a.score:7: here this player takes notes from A-2"},
        {tune + "track a\n  A-2:1 end\n",             "a.score:7: this player has no phrases, and plays"},
        {tune + "track drums\n  kick+hat:1 again\n",  "a.score:7: here this player takes kick"          },
        {tune + silent + "track a\n  again\n",        "a.score:12: this player has three voices"        },
    };
    for (const auto& [score, message] : rows) {
        EXPECT_EQ(Convert(score), "") << score;
        EXPECT_THAT(error, HasSubstr(message)) << score;
    }
}

} // namespace
