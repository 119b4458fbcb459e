#include "megadrive/md_eeprom_games.h"

#include <array>

namespace {

constexpr uint16_t kBytes128 = 0x007F;
constexpr uint16_t kBytes256 = 0x00FF;
constexpr uint16_t kBytes1024 = 0x03FF;
constexpr uint16_t kBytes2048 = 0x07FF;
constexpr uint16_t kBytes8192 = 0x1FFF;

// The lines of a kind of board: addresses and bits of SDA in, SDA out and SCL.
struct WIRING {
    uint32_t sdaIn;
    uint32_t sdaOut;
    uint32_t scl;
    uint8_t sdaInBit;
    uint8_t sdaOutBit;
    uint8_t sclBit;
};

constexpr WIRING kTwoBytes{0x200001, 0x200001, 0x200000, 0, 0, 0};
constexpr WIRING kOneByte{0x200001, 0x200001, 0x200001, 0, 1, 1};
constexpr WIRING kHighBits{0x200001, 0x200001, 0x200001, 7, 7, 6};
constexpr WIRING kLowBits{0x200001, 0x200001, 0x200001, 0, 0, 1};
constexpr WIRING kTwoPages{0x300000, 0x380001, 0x300000, 0, 7, 1};

// A page is as large as the part.
constexpr MD_EEPROM_GAME Row(std::string_view code, uint16_t bits, uint16_t sizeMask,
                             const WIRING& wiring) {
    MD_EEPROM_GAME game{};
    for (size_t i = 0; i < code.size(); ++i) {
        game.productCode[i] = code[i];
    }
    game.device = {bits,
                   sizeMask,
                   sizeMask,
                   0,
                   wiring.sdaIn,
                   wiring.sdaOut,
                   wiring.scl,
                   wiring.sdaInBit,
                   wiring.sdaOutBit,
                   wiring.sclBit,
                   0};
    return game;
}

// The order decides: only the first row of a code is ever found.
constexpr std::array<MD_EEPROM_GAME, kMdEepromGames + 1> kGames{
    {Row("T-81406", 8, kBytes256, kTwoBytes),
     Row("T-081276", 8, kBytes256, kTwoBytes),
     Row("T-81033", 8, kBytes256, kOneByte),
     Row("T-081326", 8, kBytes256, kOneByte),
     Row("T-081586", 8, kBytes2048, kTwoBytes),
     Row("T-81576", 16, kBytes8192, kTwoBytes),
     Row("T-81476", 16, kBytes8192, kTwoBytes),
     Row("T-50446", 7, kBytes128, kHighBits),
     Row("T-50516", 7, kBytes128, kHighBits),
     Row("T-50176", 7, kBytes128, kHighBits),
     Row("T-50396", 7, kBytes128, kHighBits),
     Row("T-50606", 7, kBytes128, kHighBits),
     Row("MK-1215", 7, kBytes128, kLowBits),
     Row("T-12046", 7, kBytes128, kLowBits),
     Row("T-12053", 7, kBytes128, kLowBits),
     Row("G-4060", 7, kBytes128, kLowBits),
     Row("00001211-00", 7, kBytes128, kLowBits),
     Row("MK-1228", 7, kBytes128, kLowBits),
     Row("G-5538", 7, kBytes128, kLowBits),
     Row("PR-1993", 7, kBytes128, kLowBits),
     Row("00004076-00", 7, kBytes128, kLowBits),
     Row("00000000-00", 8, kBytes2048, kTwoPages),
     Row("00000000-00", 8, kBytes2048, kTwoPages),
     Row("T-120146-50", 16, kBytes8192, kTwoPages),
     Row("T-120106", 7, kBytes128, kTwoPages),
     Row("T-120096", 8, kBytes1024, kTwoPages),
     Row("00000000-00", 8, kBytes1024, kTwoPages),
     Row("00000000-00", 8, kBytes1024, kTwoPages),
     MD_EEPROM_GAME{}}
};

} // namespace

const MD_EEPROM_GAME* MdEepromGames() {
    return kGames.data();
}

const MD_EEPROM_GAME* MdEepromFindGame(std::string_view productCode) {
    for (const MD_EEPROM_GAME* game = kGames.data(); game->productCode[0] != 0; ++game) {
        if (productCode.find(game->productCode) != std::string_view::npos) {
            return game;
        }
    }
    return nullptr;
}
