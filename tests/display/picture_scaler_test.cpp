#include "display/picture_scaler.h"
#include "display/picture_scaler_private.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::array kEveryScaler = {PictureScaler::kNone, PictureScaler::kEdge2x,
                                     PictureScaler::kEdge4x, PictureScaler::kSoft4x};
constexpr std::array kEdgeScalers = {PictureScaler::kEdge2x, PictureScaler::kEdge4x};

constexpr uint32_t kBlack = 0xFF000000;
constexpr uint32_t kWhite = 0xFFFFFFFF;

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint32_t> pixels;

    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const {
        return pixels[size_t{y} * width + x];
    }
    bool operator==(const Picture&) const = default;
};

using PixelSource = std::function<uint32_t(uint32_t x, uint32_t y)>;

Picture Draw(uint32_t width, uint32_t height, const PixelSource& pixel) {
    Picture picture{width, height, {}};
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            picture.pixels.push_back(pixel(x, y));
        }
    }
    return picture;
}

// From rows of letters: '#' is white, 'o' grey, everything else black.
Picture DrawText(const std::vector<std::string>& rows) {
    return Draw(static_cast<uint32_t>(rows[0].size()), static_cast<uint32_t>(rows.size()),
                [&](uint32_t x, uint32_t y) {
                    return rows[y][x] == '#' ? kWhite : rows[y][x] == 'o' ? 0xFF808080 : kBlack;
                });
}

// Fails the test if anything outside the target is written.
Picture Scale(PictureScaler scaler, const Picture& source) {
    constexpr uint32_t kGuard = 0x5EAF00D5;
    constexpr size_t kGuards = 64;
    const uint32_t factor = ScalerFactor(scaler);
    const size_t count = source.pixels.size() * factor * factor;
    std::vector<uint32_t> target(count + 2 * kGuards, kGuard);
    ScalePicture(scaler, source.pixels.data(), source.width, source.height,
                 target.data() + kGuards);
    const auto isGuard = [](uint32_t word) { return word == kGuard; };
    const auto first = target.begin() + kGuards;
    const auto last = target.end() - kGuards;
    EXPECT_TRUE(std::all_of(target.begin(), first, isGuard));
    EXPECT_TRUE(std::all_of(last, target.end(), isGuard));
    return {source.width * factor, source.height * factor, std::vector<uint32_t>(first, last)};
}

Picture Enlarge(const Picture& source, uint32_t factor) {
    return Draw(source.width * factor, source.height * factor,
                [&](uint32_t x, uint32_t y) { return source.At(x / factor, y / factor); });
}

Picture MirrorRows(const Picture& source) {
    return Draw(source.width, source.height,
                [&](uint32_t x, uint32_t y) { return source.At(source.width - 1 - x, y); });
}

Picture MirrorColumns(const Picture& source) {
    return Draw(source.width, source.height,
                [&](uint32_t x, uint32_t y) { return source.At(x, source.height - 1 - y); });
}

Picture Transpose(const Picture& source) {
    return Draw(source.height, source.width,
                [&](uint32_t x, uint32_t y) { return source.At(y, x); });
}

// The picture enlarged on every side by copies of its nearest border pixels.
Picture Widen(const Picture& source, uint32_t by) {
    const auto inside = [by](uint32_t at, uint32_t size) {
        return at < by ? 0 : std::min(at - by, size - 1);
    };
    return Draw(source.width + 2 * by, source.height + 2 * by, [&](uint32_t x, uint32_t y) {
        return source.At(inside(x, source.width), inside(y, source.height));
    });
}

Picture Narrow(const Picture& source, uint32_t by) {
    return Draw(source.width - 2 * by, source.height - 2 * by,
                [&](uint32_t x, uint32_t y) { return source.At(x + by, y + by); });
}

// Noise of `colours` colours: few make outlines of every shape, many make every distance between
// colours.
Picture DrawNoise(uint32_t width, uint32_t height, uint32_t colours) {
    std::mt19937 random(width * 7919 + height * 31 + colours);
    std::vector<uint32_t> palette(colours);
    for (uint32_t& colour : palette) {
        colour = static_cast<uint32_t>(random()) | 0xFF000000;
    }
    return Draw(width, height, [&](uint32_t, uint32_t) {
        return palette[static_cast<uint32_t>(random()) % colours];
    });
}

// Noise of shades so close that some neighbours count as different and others as alike.
Picture DrawShades(uint32_t width, uint32_t height) {
    std::mt19937 random(width + height);
    const auto channel = [&random] { return static_cast<uint32_t>(random()) % 56; };
    return Draw(width, height, [&](uint32_t, uint32_t) {
        return 0xFF404040 + (channel() << 16) + (channel() << 8) + channel();
    });
}

// Overlapping discs and stripes: outlines of every slope, as games draw them.
Picture DrawDiscs(uint32_t width, uint32_t height) {
    std::mt19937 random(width + height);
    Picture picture =
        Draw(width, height, [](uint32_t, uint32_t y) { return 0xFF202060 + y / 9 * 0x1000; });
    for (uint32_t disc = 0; disc < 40; ++disc) {
        const double x = static_cast<uint32_t>(random()) % (width + 1);
        const double y = static_cast<uint32_t>(random()) % (height + 1);
        const double radius = 1 + static_cast<uint32_t>(random()) % 24 / 2.0;
        const uint32_t colour = static_cast<uint32_t>(random()) | 0xFF000000;
        for (uint32_t at = 0; at < picture.pixels.size(); ++at) {
            if (std::hypot(at % width - x, at / width - y) < radius) {
                picture.pixels[at] = colour;
            }
        }
    }
    return picture;
}

// Pictures beyond the size that is worked on at once (about a hundred pixels each way), and small ones.
std::vector<Picture> DrawSamples() {
    return {DrawNoise(131, 75, 2),    DrawNoise(75, 131, 3), DrawNoise(37, 41, 5),
            DrawNoise(121, 67, 4096), DrawDiscs(247, 139),   DrawDiscs(64, 64),
            DrawNoise(1, 1, 2),       DrawNoise(1, 37, 2),   DrawNoise(150, 1, 2),
            DrawNoise(2, 3, 2),       DrawNoise(5, 2, 3),    DrawShades(160, 90)};
}

constexpr int Channel(uint32_t pixel, uint32_t channel) {
    return static_cast<int>((pixel >> (8 * channel)) & 0xFF);
}

// White below a line that climbs one row in `run` columns, drawn in pixels: runs of `run` pixels.
Picture DrawStair(uint32_t width, uint32_t height, uint32_t run) {
    return Draw(width, height,
                [run](uint32_t x, uint32_t y) { return y >= x / run ? kWhite : kBlack; });
}

// The part of the cell at (x, y), `size` wide and high, that is below the straight line `line`. The
// mean of the heights in the middle of thin slices is its integral where the line doesn't bend.
double CoveredPart(double x, double y, double size, const std::function<double(double)>& line) {
    constexpr int kSlices = 256;
    double sum = 0;
    for (int slice = 0; slice < kSlices; ++slice) {
        const double top = line(x + size * (slice + 0.5) / kSlices);
        sum += std::clamp((y + size - top) / size, 0.0, 1.0);
    }
    return sum / kSlices;
}

// Calls with each target pixel whose source pixel is at least `margin` from the borders.
void ForEachInside(const Picture& target, uint32_t margin,
                   const std::function<void(uint32_t x, uint32_t y)>& call) {
    for (uint32_t y = margin; y < target.height - margin; ++y) {
        for (uint32_t x = margin; x < target.width - margin; ++x) {
            call(x, y);
        }
    }
}

std::string NameOf(PictureScaler scaler) {
    return "scaler " + std::to_string(static_cast<int>(scaler));
}

} // namespace

TEST(PictureScaler, FactorsAreOneTwoFourFour) {
    EXPECT_EQ(ScalerFactor(PictureScaler::kNone), 1U);
    EXPECT_EQ(ScalerFactor(PictureScaler::kEdge2x), 2U);
    EXPECT_EQ(ScalerFactor(PictureScaler::kEdge4x), 4U);
    EXPECT_EQ(ScalerFactor(PictureScaler::kSoft4x), 4U);
}

TEST(PictureScaler, NoneCopies) {
    const Picture picture = DrawNoise(19, 7, 4096);
    EXPECT_EQ(Scale(PictureScaler::kNone, picture), picture);
}

TEST(PictureScaler, TopByteIsAlwaysFullAndChangesNothing) {
    const Picture picture = DrawDiscs(50, 40);
    Picture clear = picture;
    for (size_t at = 0; at < clear.pixels.size(); ++at) {
        clear.pixels[at] = (clear.pixels[at] & 0xFFFFFF) | static_cast<uint32_t>(at % 256) << 24;
    }
    for (const PictureScaler scaler : kEveryScaler) {
        const Picture scaled = Scale(scaler, clear);
        EXPECT_EQ(scaled, Scale(scaler, picture)) << NameOf(scaler);
        for (const uint32_t pixel : scaled.pixels) {
            ASSERT_EQ(pixel >> 24, 0xFFU) << NameOf(scaler);
        }
    }
}

TEST(PictureScaler, EmptyPicturesWriteNothing) {
    for (const PictureScaler scaler : kEveryScaler) {
        EXPECT_TRUE(Scale(scaler, {0, 0, {}}).pixels.empty());
        EXPECT_TRUE(Scale(scaler, {0, 9, {}}).pixels.empty());
        EXPECT_TRUE(Scale(scaler, {9, 0, {}}).pixels.empty());
    }
}

TEST(PictureScaler, FlatColourStays) {
    for (const uint32_t colour : {kBlack, kWhite, 0xFF010203U, 0xFFFE7F80U, 0xFF00FF00U}) {
        const auto flat = [colour](uint32_t, uint32_t) { return colour; };
        for (const PictureScaler scaler : kEveryScaler) {
            const uint32_t factor = ScalerFactor(scaler);
            EXPECT_EQ(Scale(scaler, Draw(117, 70, flat)), Draw(117 * factor, 70 * factor, flat));
        }
    }
}

TEST(PictureScaler, MirroredPicturesGiveMirroredResults) {
    for (const Picture& picture : DrawSamples()) {
        for (const PictureScaler scaler : kEveryScaler) {
            const Picture scaled = Scale(scaler, picture);
            EXPECT_TRUE(Scale(scaler, MirrorRows(picture)) == MirrorRows(scaled)) << NameOf(scaler);
            EXPECT_TRUE(Scale(scaler, MirrorColumns(picture)) == MirrorColumns(scaled))
                << NameOf(scaler);
        }
    }
}

TEST(PictureScaler, TransposedPicturesGiveTransposedResults) {
    for (const Picture& picture : DrawSamples()) {
        for (const PictureScaler scaler : kEveryScaler) {
            EXPECT_TRUE(Scale(scaler, Transpose(picture)) == Transpose(Scale(scaler, picture)))
                << NameOf(scaler) << ", " << picture.width << " by " << picture.height;
        }
    }
}

// Also compares the tiles in which a picture is processed: they lie elsewhere in the wider one.
TEST(PictureScaler, BorderPixelsGoOnOutside) {
    for (const Picture& picture : DrawSamples()) {
        for (const PictureScaler scaler : kEveryScaler) {
            const Picture scaled = Scale(scaler, picture);
            for (const uint32_t by : {1U, 9U, 50U}) {
                const Picture wider = Scale(scaler, Widen(picture, by));
                EXPECT_TRUE(Narrow(wider, by * ScalerFactor(scaler)) == scaled)
                    << NameOf(scaler) << ", " << picture.width << " by " << picture.height;
            }
        }
    }
}

TEST(PictureScaler, ColoursLieWithinThoseOfTheNeighbours) {
    for (const Picture& picture : DrawSamples()) {
        for (const PictureScaler scaler : kEveryScaler) {
            const uint32_t reach = scaler == PictureScaler::kSoft4x ? 3 : 1;
            const uint32_t factor = ScalerFactor(scaler);
            const Picture scaled = Scale(scaler, picture);
            for (uint32_t y = 0; y < picture.height; ++y) {
                for (uint32_t x = 0; x < picture.width; ++x) {
                    std::array<int, 3> low = {255, 255, 255};
                    std::array<int, 3> high = {0, 0, 0};
                    for (uint32_t v = y - std::min(y, reach); v <= y + reach && v < picture.height;
                         ++v) {
                        for (uint32_t u = x - std::min(x, reach);
                             u <= x + reach && u < picture.width; ++u) {
                            for (uint32_t channel = 0; channel < 3; ++channel) {
                                const int value = Channel(picture.At(u, v), channel);
                                low[channel] = std::min(low[channel], value);
                                high[channel] = std::max(high[channel], value);
                            }
                        }
                    }
                    for (uint32_t cell = 0; cell < factor * factor; ++cell) {
                        const uint32_t pixel =
                            scaled.At(x * factor + cell % factor, y * factor + cell / factor);
                        for (uint32_t channel = 0; channel < 3; ++channel) {
                            ASSERT_GE(Channel(pixel, channel), low[channel]) << NameOf(scaler);
                            ASSERT_LE(Channel(pixel, channel), high[channel]) << NameOf(scaler);
                        }
                    }
                }
            }
        }
    }
}

// A dot is a rectangle of one by one, a bar one of one by many.
TEST(PictureScalerEdge, RectanglesKeepTheirCorners) {
    for (uint32_t width = 1; width <= 7; ++width) {
        for (uint32_t height = 1; height <= 7; ++height) {
            const Picture picture = Draw(width + 8, height + 8, [&](uint32_t x, uint32_t y) {
                return x >= 4 && x < 4 + width && y >= 4 && y < 4 + height ? kWhite : kBlack;
            });
            for (const PictureScaler scaler : kEdgeScalers) {
                EXPECT_EQ(Scale(scaler, picture), Enlarge(picture, ScalerFactor(scaler)))
                    << NameOf(scaler) << ", " << width << " by " << height;
            }
        }
    }
}

TEST(PictureScalerEdge, LettersOfStraightStrokesStayAsDrawn) {
    const Picture letters = DrawText({
        "................................",
        ".#...#..#####..#####..#......#..",
        ".#...#..#........#....#......#..",
        ".#...#..#........#....#......#..",
        ".#####..####.....#....#....#####",
        ".#...#..#........#....#......#..",
        ".#...#..#........#....#......#..",
        ".#...#..#####....#....####...#..",
        "................................",
        "..##..##.######.#...#.#.#...#...",
        "..##..##.######.#...#.#.#...#...",
        "..######...##...#####.###.#####.",
        "..######...##.........###...#...",
        "..##..##...##.........#.#...#...",
        "..##..##...##.........#.#.......",
        "................................",
    });
    for (const PictureScaler scaler : kEdgeScalers) {
        EXPECT_EQ(Scale(scaler, letters), Enlarge(letters, ScalerFactor(scaler))) << NameOf(scaler);
    }
}

// A shadow's edge is a pixel beside that of its box, which is a step, but not one of a slanted line.
TEST(PictureScalerEdge, BoxesWithShadowsKeepTheirCorners) {
    for (uint32_t width = 3; width <= 8; ++width) {
        for (uint32_t height = 3; height <= 8; ++height) {
            const auto isBox = [&](uint32_t x, uint32_t y) {
                return x >= 4 && x < 4 + width && y >= 4 && y < 4 + height;
            };
            const Picture picture = Draw(width + 9, height + 9, [&](uint32_t x, uint32_t y) {
                const bool isShadow = x > 0 && y > 0 && isBox(x - 1, y - 1);
                return isBox(x, y) ? kWhite : isShadow ? kBlack : 0xFF3060C0;
            });
            for (const PictureScaler scaler : kEdgeScalers) {
                EXPECT_EQ(Scale(scaler, picture), Enlarge(picture, ScalerFactor(scaler)))
                    << NameOf(scaler) << ", " << width << " by " << height;
            }
        }
    }
}

// Where a bar and a box touch diagonally, the ground between them is joined as much as they are.
TEST(PictureScalerEdge, BarThatTouchesABoxIsNotJoined) {
    for (uint32_t length = 3; length <= 6; ++length) {
        const Picture picture = Draw(20, 14, [length](uint32_t x, uint32_t y) {
            const bool isBar = y == 4 && x >= 10 - length && x < 10;
            const bool isBox = y >= 5 && y < 9 && x >= 10 && x < 15;
            return isBar || isBox ? kWhite : kBlack;
        });
        for (const PictureScaler scaler : kEdgeScalers) {
            EXPECT_EQ(Scale(scaler, picture), Enlarge(picture, ScalerFactor(scaler)))
                << NameOf(scaler) << ", length " << length;
        }
    }
}

// Dots, checkers, checkers on a surface of one of their colours, teeth, and lines side by side.
TEST(PictureScalerEdge, DitheringStaysAsDrawn) {
    const std::vector<PixelSource> patterns = {
        [](uint32_t x, uint32_t y) { return x % 2 == 0 && y % 2 == 0 ? kWhite : kBlack; },
        [](uint32_t x, uint32_t y) {
            return x % 4 == y % 4 * 2 % 4 && y % 2 == 0 ? kWhite : kBlack;
        },
        [](uint32_t x, uint32_t y) { return (x + y) % 2 == 0 ? kWhite : kBlack; },
        [](uint32_t x, uint32_t y) { return (x + y) % 2 == 0 || y < 9 ? kWhite : kBlack; },
        [](uint32_t x, uint32_t y) {
            return y < 20 && ((x + y) % 2 == 0 || y < 9) ? kWhite : kBlack;
        },
        [](uint32_t x, uint32_t y) {
            return (x + y) % 2 == 0 ? (y < 9 ? kWhite : 0xFFFF8000) : kBlack;
        },
        [](uint32_t x, uint32_t y) { return (x / 2 + y) % 2 == 0 ? kWhite : kBlack; },
        [](uint32_t x, uint32_t y) {
            return (x + y) % 2 == 0 && std::hypot(x - 16.0, y - 16.0) < 12 ? kWhite : kBlack;
        },
        // Checkers that thin out.
        [](uint32_t x, uint32_t y) {
            return y < 10 ? ((x + y) % 2 == 0 ? kWhite : kBlack)
                          : (y == 10 && x % 4 == 2 ? kWhite : kBlack);
        },
        [](uint32_t x, uint32_t y) { return y > 8 + x % 2 ? kWhite : kBlack; },
        [](uint32_t x, uint32_t) { return x % 2 == 0 ? kWhite : kBlack; },
    };
    for (size_t pattern = 0; pattern < patterns.size(); ++pattern) {
        const Picture picture = Draw(32, 32, patterns[pattern]);
        for (const PictureScaler scaler : kEdgeScalers) {
            EXPECT_EQ(Scale(scaler, picture), Enlarge(picture, ScalerFactor(scaler)))
                << NameOf(scaler) << ", pattern " << pattern;
        }
    }
}

// Ordered dithering with four by four thresholds: every share of white from none to all, and a rising
// one.
TEST(PictureScalerEdge, OrderedDitheringStaysAsDrawn) {
    constexpr uint32_t kOrder[4][4] = {
        {0,  8,  2,  10},
        {12, 4,  14, 6 },
        {3,  11, 1,  9 },
        {15, 7,  13, 5 }
    };
    constexpr uint32_t kRising = 17;
    for (uint32_t share = 0; share <= kRising; ++share) {
        const Picture picture = Draw(40, 40, [&](uint32_t x, uint32_t y) {
            return kOrder[y % 4][x % 4] < (share == kRising ? y / 2 : share) ? kWhite : kBlack;
        });
        for (const PictureScaler scaler : kEdgeScalers) {
            const uint32_t factor = ScalerFactor(scaler);
            // Away from the borders, at which dots become bars.
            EXPECT_EQ(Narrow(Scale(scaler, picture), 4 * factor),
                      Enlarge(Narrow(picture, 4), factor))
                << NameOf(scaler) << ", " << share << " of 16";
        }
    }
}

TEST(PictureScaler, CheckersKeepTheirMeanColour) {
    const std::vector<std::array<uint32_t, 2>> colours = {
        {kBlack,     kWhite    },
        {0xFF0000AA, 0xFF5500AA},
        {0xFF123456, 0xFFFEDCBA},
        {0xFF646464, 0xFF656565}
    };
    for (const auto& pair : colours) {
        const Picture picture =
            Draw(32, 32, [&](uint32_t x, uint32_t y) { return pair[(x + y) % 2]; });
        for (const PictureScaler scaler : kEveryScaler) {
            const Picture scaled = Scale(scaler, picture);
            // Away from the borders, at which two of a colour lie side by side.
            const uint32_t margin = 4 * ScalerFactor(scaler);
            std::array<double, 3> sums{};
            double count = 0;
            ForEachInside(scaled, margin, [&](uint32_t x, uint32_t y) {
                for (uint32_t channel = 0; channel < 3; ++channel) {
                    sums[channel] += Channel(scaled.At(x, y), channel);
                }
                ++count;
            });
            for (uint32_t channel = 0; channel < 3; ++channel) {
                const double mean = (Channel(pair[0], channel) + Channel(pair[1], channel)) / 2.0;
                EXPECT_NEAR(sums[channel] / count, mean, 1) << NameOf(scaler);
            }
        }
    }
}

// The line that a stair represents goes through the middles of its runs: y = x / run - 1/2. Pixels as
// they are miss it by two triangles a step, each of a half by half a run: a quarter of a pixel in each
// column. What the edge kinds miss is rounding, coverage to 1/128 and the result to 1/255: at most two
// levels in each target pixel that the line goes through, of which a column of pixels has at most twice
// the factor.
TEST(PictureScalerEdge, StairsBecomeStraightLines) {
    constexpr uint32_t kMargin = 8;
    for (uint32_t run = 1; run <= 4; ++run) {
        // Whole steps of every run lie between the margins.
        const Picture stair = DrawStair(52, 64, run);
        for (const PictureScaler scaler : kEdgeScalers) {
            const uint32_t factor = ScalerFactor(scaler);
            const Picture scaled = Scale(scaler, stair);
            const Picture nearest = Enlarge(stair, factor);
            double error = 0;
            double nearestError = 0;
            // The line crosses the upper border far to the left of the compared columns.
            for (uint32_t x = kMargin * factor; x < (stair.width - kMargin) * factor; ++x) {
                for (uint32_t y = 0; y < scaled.height; ++y) {
                    const double part = CoveredPart(static_cast<double>(x) / factor,
                                                    static_cast<double>(y) / factor, 1.0 / factor,
                                                    [run](double at) { return at / run - 0.5; });
                    const double ideal = 255 * part;
                    ASSERT_NEAR(Channel(scaled.At(x, y), 0), ideal, 2)
                        << NameOf(scaler) << ", run " << run << ", at " << x << ", " << y;
                    error += std::abs(Channel(scaled.At(x, y), 0) - ideal);
                    nearestError += std::abs(Channel(nearest.At(x, y), 0) - ideal);
                }
            }
            const double cells = (stair.width - 2 * kMargin) * factor * factor;
            EXPECT_NEAR(nearestError / cells, 255 / 4.0, 0.5);
            EXPECT_LT(error / cells, 4.0 / factor);
            EXPECT_GT(nearestError, error * 30);
        }
    }
}

// A thin line from corner to corner of its pixels becomes a band half a pixel up and down from its middle.
TEST(PictureScalerEdge, ThinDiagonalBecomesABand) {
    const Picture line =
        Draw(40, 40, [](uint32_t x, uint32_t y) { return x == y ? kWhite : kBlack; });
    for (const PictureScaler scaler : kEdgeScalers) {
        const uint32_t factor = ScalerFactor(scaler);
        const Picture scaled = Scale(scaler, line);
        ForEachInside(scaled, 8 * factor, [&](uint32_t x, uint32_t y) {
            const double left = static_cast<double>(x) / factor;
            const double top = static_cast<double>(y) / factor;
            const double size = 1.0 / factor;
            const double part = CoveredPart(left, top, size, [](double at) { return at - 0.5; }) -
                                CoveredPart(left, top, size, [](double at) { return at + 0.5; });
            EXPECT_NEAR(Channel(scaled.At(x, y), 1), 255 * part, 2) << NameOf(scaler);
        });
    }
}

// By the triangles at its corners: 5 by 5 without the four corner pixels has four corners of a half by a
// half added and eight of a half by one taken away; a run of three that turns back keeps one of it flat.
TEST(PictureScalerEdge, SmallDiscIsRounded) {
    const Picture disc = DrawText({
        ".........",
        ".........",
        "...###...",
        "..#####..",
        "..#####..",
        "..#####..",
        "...###...",
        ".........",
        ".........",
    });
    for (const PictureScaler scaler : kEdgeScalers) {
        const uint32_t factor = ScalerFactor(scaler);
        const Picture scaled = Scale(scaler, disc);
        double area = 0;
        for (const uint32_t pixel : scaled.pixels) {
            area += Channel(pixel, 2) / 255.0 / (factor * factor);
        }
        EXPECT_NEAR(area, 21 + 4 * 0.125 - 8 * 0.25, 0.05) << NameOf(scaler);
        // The four sides touch the same lines as before, and only there.
        EXPECT_EQ(scaled.At(scaled.width / 2, 2 * factor), kWhite);
        EXPECT_EQ(scaled.At(scaled.width / 2, 2 * factor - 1), kBlack);
        EXPECT_NE(scaled.At(3 * factor, 2 * factor), kWhite);
    }
}

TEST(PictureScalerEdge, StepsBetweenShadesAreNoOutlines) {
    const Picture shades =
        Draw(40, 40, [](uint32_t x, uint32_t y) { return y >= x ? 0xFF405060 : 0xFF445464; });
    for (const PictureScaler scaler : kEdgeScalers) {
        EXPECT_EQ(Scale(scaler, shades), Enlarge(shades, ScalerFactor(scaler)));
    }
}

// A crossing belongs to the thin line, whichever of the two colours it has.
TEST(PictureScalerEdge, ThinLineIsJoinedInEitherColour) {
    const auto white = [](uint32_t x, uint32_t y) { return x + y == 29 ? kWhite : kBlack; };
    const auto black = [&](uint32_t x, uint32_t y) {
        return white(x, y) == kWhite ? kBlack : kWhite;
    };
    for (const PictureScaler scaler : kEdgeScalers) {
        const uint32_t factor = ScalerFactor(scaler);
        Picture inverse = Scale(scaler, Draw(30, 30, black));
        for (uint32_t& pixel : inverse.pixels) {
            pixel ^= 0xFFFFFF;
        }
        const Picture scaled = Scale(scaler, Draw(30, 30, white));
        // Halves of a level may be rounded either way.
        ForEachInside(scaled, 0, [&](uint32_t x, uint32_t y) {
            EXPECT_NEAR(Channel(scaled.At(x, y), 0), Channel(inverse.At(x, y), 0), 1);
        });
        // The point (15, 15), at which two pixels of the line touch, is the line's on both sides.
        EXPECT_GT(Channel(scaled.At(15 * factor - 1, 15 * factor - 1), 0), 100);
        EXPECT_GT(Channel(scaled.At(15 * factor, 15 * factor), 0), 100);
    }
}

// In the middle of a lone dot's pixel the spline has (12/16) squared of its contrast, more than half,
// so steepening only adds to it.
TEST(PictureScalerSoft, LoneDotSurvives) {
    for (const auto& [dot, ground] : {
             std::array{kWhite, kBlack},
             std::array{kBlack, kWhite}
    }) {
        const Picture picture = Draw(9, 9, [dot = dot, ground = ground](uint32_t x, uint32_t y) {
            return x == 4 && y == 4 ? dot : ground;
        });
        const Picture scaled = Scale(PictureScaler::kSoft4x, picture);
        for (uint32_t cell = 0; cell < 4; ++cell) {
            const uint32_t pixel = scaled.At(4 * 4 + 1 + cell % 2, 4 * 4 + 1 + cell / 2);
            EXPECT_GE(std::abs(Channel(pixel, 0) - Channel(ground, 0)), 143);
        }
        EXPECT_EQ(scaled.At(0, 0), ground);
    }
}

// An edge between two surfaces never goes back, never goes beyond them, and is over within a pixel.
TEST(PictureScalerSoft, EdgesDoNotRing) {
    const Picture edge =
        Draw(16, 5, [](uint32_t x, uint32_t) { return x < 8 ? 0xFF2040C0 : 0xFFE0A010; });
    const Picture scaled = Scale(PictureScaler::kSoft4x, edge);
    for (uint32_t x = 1; x < scaled.width; ++x) {
        EXPECT_GE(Channel(scaled.At(x, 9), 2), Channel(scaled.At(x - 1, 9), 2));
        EXPECT_LE(Channel(scaled.At(x, 9), 0), Channel(scaled.At(x - 1, 9), 0));
    }
    EXPECT_EQ(scaled.At(8 * 4 - 4, 9), 0xFF2040C0);
    EXPECT_EQ(scaled.At(8 * 4 + 3, 9), 0xFFE0A010);
}

// The height at which each column goes from black to white, against the line that the stair represents.
// Unscaled pixels miss it by up to half a pixel; a visible step is at least a target pixel.
TEST(PictureScalerSoft, StairsAreStraightLines) {
    for (uint32_t run = 1; run <= 4; ++run) {
        const Picture stair = DrawStair(64, 80, run);
        const Picture scaled = Scale(PictureScaler::kSoft4x, stair);
        for (uint32_t x = 12 * 4; x < (64 - 12) * 4; ++x) {
            double white = 0;
            for (uint32_t y = 0; y < scaled.height; ++y) {
                white += Channel(scaled.At(x, y), 0) / 255.0;
            }
            const double height = (scaled.height - white) / 4;
            const double line = (x + 0.5) / 4 / run - 0.5;
            EXPECT_NEAR(height, line, 1.0 / 8) << "run " << run << ", column " << x;
        }
    }
}

TEST(PictureScaler, WideVectorsGiveTheSameResults) {
    if (!HasWideVectors()) {
        GTEST_SKIP() << "this processor has none";
    }
    for (const Picture& picture : DrawSamples()) {
        const SourcePicture source = {picture.pixels.data(), picture.width, picture.height};
        std::vector<uint32_t> plain(picture.pixels.size() * 16);
        std::vector<uint32_t> wide(picture.pixels.size() * 16);
        for (const auto scale : {ScaleEdge2x, ScaleEdge4x, ScaleSoft4x}) {
            scale(source, plain.data(), VectorForm::kPlain);
            scale(source, wide.data(), VectorForm::kWide);
            EXPECT_TRUE(plain == wide) << picture.width << " by " << picture.height;
        }
    }
}
