// The store alone: names, types, list and index.
#include "base/text.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The plain search that the index must agree with.
const Setting* FindBySearch(const SettingsStore& store, std::wstring_view name) {
    const std::wstring lowered = LowerAscii(name);
    const Setting* setting = store.First();
    while (setting != nullptr && setting->name != lowered) {
        setting = setting->next.get();
    }
    return setting;
}

std::wstring UpperAscii(std::wstring text) {
    for (wchar_t& c : text) {
        c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    }
    return text;
}

std::vector<std::wstring> Names(const SettingsStore& store) {
    std::vector<std::wstring> names;
    for (const Setting* setting = store.First(); setting != nullptr;
         setting = setting->next.get()) {
        names.push_back(setting->name);
    }
    return names;
}

TEST(Settings, EveryTypeReturnsWhatWasRegistered) {
    SettingsStore store;
    store.RegisterInt(L"i", -7);
    store.RegisterInt2(L"i2", 5, 6);
    store.RegisterString(L"s", L"Été");
    store.RegisterBool(L"b", true);
    store.RegisterFloat(L"f", 1.25f);
    EXPECT_EQ(store.GetInt(L"i"), -7);
    EXPECT_EQ(store.GetInt2(L"i2"), std::pair(5, 6));
    EXPECT_EQ(store.GetString(L"s"), L"Été");
    EXPECT_TRUE(store.GetBool(L"b"));
    EXPECT_EQ(store.GetFloat(L"f"), 1.25f);
}

TEST(Settings, AMissingNameReadsAsZeroFalseAndEmpty) {
    SettingsStore store;
    store.RegisterInt(L"other", 1);
    EXPECT_EQ(store.GetInt(L"missing"), 0);
    EXPECT_EQ(store.GetInt2(L"missing"), std::pair(0, 0));
    EXPECT_EQ(store.GetString(L"missing"), L"");
    EXPECT_FALSE(store.GetBool(L"missing"));
    EXPECT_EQ(store.GetFloat(L"missing"), 0.0f);
    EXPECT_EQ(store.Find(L"missing"), nullptr);
    EXPECT_EQ(store.Find(L""), nullptr);
}

TEST(Settings, NamesAreOneInAnyCaseAndKeptInLowerCase) {
    SettingsStore store;
    store.RegisterBool(L"app_fullScreen", true);
    EXPECT_TRUE(store.GetBool(L"app_fullscreen"));
    EXPECT_TRUE(store.GetBool(L"APP_FULLSCREEN"));
    store.RegisterBool(L"APP_fullscreen", false);
    EXPECT_FALSE(store.GetBool(L"app_fullScreen"));
    EXPECT_EQ(Names(store), std::vector<std::wstring>{L"app_fullscreen"});
}

TEST(Settings, OnlyTheLettersAToZAreLowered) {
    SettingsStore store;
    store.RegisterInt(L"É", 1);
    store.RegisterInt(L"é", 2);
    EXPECT_EQ(store.GetInt(L"É"), 1);
    EXPECT_EQ(store.GetInt(L"é"), 2);
    store.RegisterInt(L"[x]", 3); // '[' is 32 below '{', as 'A' is below 'a'
    EXPECT_EQ(store.Find(L"{x}"), nullptr);
}

TEST(Settings, TheNewestIsAtTheHead) {
    SettingsStore store;
    store.RegisterInt(L"a", 1);
    store.RegisterInt(L"b", 2);
    store.RegisterInt(L"c", 3);
    EXPECT_EQ(Names(store), (std::vector<std::wstring>{L"c", L"b", L"a"}));
}

TEST(Settings, RegisteringAnExistingNameOverwritesValueAndTypeInItsPlace) {
    SettingsStore store;
    store.RegisterInt(L"a", 1);
    store.RegisterInt(L"b", 2);
    store.RegisterFloat(L"A", 0.5f);
    EXPECT_EQ(Names(store), (std::vector<std::wstring>{L"b", L"a"}));
    EXPECT_EQ(store.GetFloat(L"a"), 0.5f);
    ASSERT_NE(store.Find(L"a"), nullptr);
    EXPECT_EQ(store.Find(L"a")->type.load(), SettingType::kFloat);
    store.RegisterInt(L"b", 9);
    EXPECT_EQ(store.GetInt(L"b"), 9);
}

TEST(Settings, AGetterOfTheWrongTypeReadsItsOwnField) {
    SettingsStore store;
    store.RegisterInt2(L"pair", 7, 8);
    EXPECT_EQ(store.GetInt(L"pair"), 7);
    EXPECT_FALSE(store.GetBool(L"pair"));
    EXPECT_EQ(store.GetFloat(L"pair"), 0.0f);
    EXPECT_EQ(store.GetString(L"pair"), L"");
    store.RegisterBool(L"pair", true);
    EXPECT_EQ(store.GetInt2(L"pair"), std::pair(7, 8)) << "the other fields stay";
    EXPECT_TRUE(store.GetBool(L"pair"));
}

TEST(Settings, ASetterChangesAnExistingSettingAndKeepsItsType) {
    SettingsStore store;
    store.RegisterInt(L"i", 1);
    store.RegisterInt2(L"i2", 1, 2);
    store.RegisterString(L"s", L"old");
    store.RegisterBool(L"b", false);
    store.RegisterFloat(L"f", 1.0f);
    store.SetInt(L"I", 11);
    store.SetInt2(L"I2", 12, 13);
    store.SetString(L"S", L"new");
    store.SetBool(L"B", true);
    store.SetFloat(L"F", 1.5f);
    EXPECT_EQ(store.GetInt(L"i"), 11);
    EXPECT_EQ(store.GetInt2(L"i2"), std::pair(12, 13));
    EXPECT_EQ(store.GetString(L"s"), L"new");
    EXPECT_TRUE(store.GetBool(L"b"));
    EXPECT_EQ(store.GetFloat(L"f"), 1.5f);
    store.SetFloat(L"i", 2.5f);
    EXPECT_EQ(store.Find(L"i")->type.load(), SettingType::kInt);
    EXPECT_EQ(store.GetInt(L"i"), 11);
    EXPECT_EQ(store.GetFloat(L"i"), 2.5f);
}

TEST(Settings, ASetterOfAnUnknownNameDoesNothing) {
    SettingsStore store;
    store.RegisterInt(L"known", 1);
    store.SetInt(L"unknown", 2);
    store.SetInt2(L"unknown", 2, 3);
    store.SetString(L"unknown", L"x");
    store.SetBool(L"unknown", true);
    store.SetFloat(L"unknown", 2.0f);
    EXPECT_EQ(Names(store), std::vector<std::wstring>{L"known"});
    EXPECT_EQ(store.GetInt(L"known"), 1);
    EXPECT_EQ(store.GetInt(L"unknown"), 0);
}

// Every name in lower, upper and its own case, split into prefix and rest at every place, and names
// that almost exist.
TEST(Settings, IndexAndSearchAgreeOnEveryName) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    store.RegisterInt(L"", 1);
    const std::vector<std::wstring> names = Names(store);
    ASSERT_GT(names.size(), 100u);
    for (const std::wstring& name : names) {
        const Setting* const expected = FindBySearch(store, name);
        ASSERT_NE(expected, nullptr);
        const std::wstring upper = UpperAscii(name);
        EXPECT_EQ(store.Find(name), expected);
        EXPECT_EQ(store.Find(upper), expected);
        for (size_t cut = 0; cut <= name.size(); ++cut) {
            const std::wstring_view prefix = std::wstring_view(upper).substr(0, cut);
            const std::wstring_view rest = std::wstring_view(name).substr(cut);
            EXPECT_EQ(store.Find(prefix, rest), expected);
            EXPECT_EQ(store.Find(SettingPrefix(prefix), rest), expected);
        }
        for (const std::wstring& near :
             {name + L"x", L"x" + name, name.substr(0, name.size() / 2)}) {
            EXPECT_EQ(store.Find(near), FindBySearch(store, near));
        }
    }
}

TEST(Settings, TheIndexGrowsWithTheList) {
    constexpr int kMany = 20'000;
    SettingsStore store;
    for (int i = 0; i < kMany; ++i) {
        store.RegisterInt(L"name " + std::to_wstring(i), i);
    }
    for (int i = 0; i < kMany; ++i) {
        ASSERT_EQ(store.GetInt(L"NAME " + std::to_wstring(i)), i);
    }
    EXPECT_EQ(store.Find(L"name " + std::to_wstring(kMany)), nullptr);
}

TEST(Settings, TheProgramHasOneStore) {
    EXPECT_EQ(&Settings(), &Settings());
}

} // namespace
