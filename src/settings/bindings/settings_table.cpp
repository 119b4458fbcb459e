#include "facts/machine_facts.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <string>
#include <string_view>
#include <variant>

namespace {

struct DEFAULT_SETTING {
    const wchar_t* name;
    std::variant<bool, int32_t, float, std::wstring_view> value;
};

constexpr std::wstring_view kEmpty;

// The default values, in the order of registration. The first name holds the build number; its value
// becomes true at the end of every run, so that the first run of a build can be told.
constexpr DEFAULT_SETTING kDefaultSettings[] = {
    {L"app_720runonce",           false },
    {L"emu_startfullscreen",      false }, // false: on the room's television
    {L"app_fullScreen",           true  },
    {L"app_antialias",            false },
    {L"app_anisotropicfiltering", false },
    {L"app_vsync",                true  },
    {L"app_lighting",             true  },
    {L"app_screenshotfull",       false }, // the whole picture
    {L"app_screenshotwindow",     false }, // the window as it is shown, not the machine's dots
    {L"app_screenshotbmp",        false }, // BMP files, not PNG
    {L"app_window_width",         1280  }, // pixels, when not full-screen
    {L"app_window_height",        720   },
    {L"app_window_place",         kEmpty}, // "X Y" of its corner on the desktop; empty: in the middle
    {L"app_keycard",              true  }, // the first games show the keys that play them
    {L"app_keycards",             0     }, // how many have
    {L"app_managecpucores",       false }, // bind session threads to processors
    {L"gamebrowser_cursystem",    0     }, // last system in the browser
    {L"room_place",               kEmpty}, // where the player stood at the end of the last run
    {L"library_keepsources",      false }, // converted files move to a subfolder, not deleted
    {L"library_owngames",         0     }, // the set of our own games that was put into the library
    {L"emu_fastforward",          2     }, // frames per round
    {L"emu_gameroomfilter",       false }, // smooth picture on the television
    {L"emu_scaler",               0     }, // of full-screen pictures: none, edges 2x, edges 4x, soft 4x
    {L"emu_smooth",               false }, // between pixels
    {L"emu_crop",                 true  }, // what a television shows of the picture
    {L"emu_rewindbuffer",         256   }, // mebibytes
    {L"emu_autosaves",            3     }, // bit 0 load at start, bit 1 save at stop
    {L"emu_pauseunfocused",       false }, // games wait while another window has the keyboard
    {L"megadrive_psgvolume",      1.25f }, // gains
    {L"megadrive_ymvolume",       1.0f  },
    {L"login_connectstartup",     false },
    {L"login_username",           kEmpty},
    {L"login_userpass",           kEmpty}, // stays empty: member_key.h
    {L"audio_app_quality",        1     },
    {L"audio_app_samplerate",     44100 }, // sample pairs a second, for the whole program
    {L"audio_volume",             1.0f  },
    {L"emu_audiocutoff_low",      800   }, // Hz
    {L"emu_audiocutoff_high",     15000 },
    {L"emu_audiocutoff_enabled",  false },
    {L"audio_boost_low",          1.25f }, // gains of the three bands
    {L"audio_boost_mid",          1.0f  },
    {L"audio_boost_high",         1.0f  },
    {L"video_integer_window",     true  }, // whole multiples of the picture's rows
    {L"video_integer_full",       false }, // the same when full-screen
    {L"video_aspect",             0     }, // 0 the machine's, 1 4:3, 2 square dots
    {L"video_crt",                0.0f  }, // strength of the CRT filter, to 1
    {L"web_service",              kEmpty}, // the web service's address; empty: none is asked
    {L"web_images",               kEmpty}, // address above its cover images
};

struct REGISTER_VALUE {
    SettingsStore& store;
    const wchar_t* name;

    void operator()(bool value) const { store.RegisterBool(name, value); }
    void operator()(int32_t value) const { store.RegisterInt(name, value); }
    void operator()(float value) const { store.RegisterFloat(name, value); }
    void operator()(std::wstring_view value) const { store.RegisterString(name, value); }
};

constexpr const wchar_t* kEdges[] = {L"left", L"top", L"right", L"bottom"};

// Dots that are cut off at the edges of each machine's picture: `sms_overscan_left` and so on.
void RegisterOverscan(SettingsStore& store) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        const std::string_view folder = machine.folder;
        const std::wstring prefix = std::wstring(folder.begin(), folder.end()) + L"_overscan_";
        for (const wchar_t* const edge : kEdges) {
            store.RegisterInt(prefix + edge, 0);
        }
    }
}

} // namespace

void RegisterDefaultSettings(SettingsStore& store) {
    for (const DEFAULT_SETTING& setting : kDefaultSettings) {
        std::visit(REGISTER_VALUE{store, setting.name}, setting.value);
    }
    RegisterOverscan(store);
    RegisterBindings(store);
}
