// Load and Save on documents in memory.
#include "settings/settings.h"
#include "settings/store/settings_private.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace {

bool Load(SettingsStore& store, std::string_view text) {
    return store.Load(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

std::string Document(const SettingsStore& store) {
    const std::vector<uint8_t> bytes = store.Save();
    return {bytes.begin(), bytes.end()};
}

std::string Wrapped(const std::string& elements) {
    return "<?xml version=\"1.0\" ?>\n<Settings>\n" + elements + "</Settings>\n";
}

std::string Element(const char* type, const char* name, const char* value) {
    std::string text = "<";
    text.append(type).append(" name=\"").append(name).append("\" value=\"").append(value);
    return text.append("\"/>");
}

// One setting of each type.
void RegisterSome(SettingsStore& store) {
    store.RegisterInt(L"number", 10);
    store.RegisterInt2(L"pair", 20, 21);
    store.RegisterString(L"text", L"before");
    store.RegisterBool(L"flag", true);
    store.RegisterFloat(L"real", 0.5f);
}

struct NUMBER_CASE {
    const char* text;
    double expected;
};

TEST(SettingsDocument, SaveWritesTheListInItsOrder) {
    SettingsStore store;
    RegisterSome(store);
    store.SetString(L"text", L"Été <&\">");
    EXPECT_EQ(Document(store), "<?xml version=\"1.0\" ?>\n"
                               "<Settings>\n"
                               "    <float name=\"real\" value=\"0.500000\" />\n"
                               "    <bool name=\"flag\" value=\"true\" />\n"
                               "    <string name=\"text\" value='Été &lt;&amp;&quot;&gt;' />\n"
                               "    <int2 name=\"pair\" value=\"20\" value2=\"21\" />\n"
                               "    <int name=\"number\" value=\"10\" />\n"
                               "</Settings>\n");
}

TEST(SettingsDocument, SaveWritesEveryCharacterInOneWay) {
    SettingsStore store;
    EXPECT_EQ(Document(store), "<?xml version=\"1.0\" ?>\n<Settings />\n");
    store.RegisterString(L"control", L"\x1\t\n\r\x1F\x7F");
    store.RegisterString(L"it's", L"it's");
    store.RegisterString(L"a\"b", L"&#x41; &amp;");
    EXPECT_EQ(Document(store),
              "<?xml version=\"1.0\" ?>\n"
              "<Settings>\n"
              "    <string name='a&quot;b' value=\"&amp;#x41; &amp;amp;\" />\n"
              "    <string name=\"it&apos;s\" value=\"it&apos;s\" />\n"
              "    <string name=\"control\" value=\"&#x01;&#x09;&#x0A;&#x0D;&#x1F;\x7F\" />\n"
              "</Settings>\n");
}

TEST(SettingsDocument, LoadTakesEveryType) {
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(store, Wrapped("<int name=\"number\" value=\"-5\"/>"
                                    "<int2 name=\"PAIR\" value=\"6\" value2=\"7\"/>"
                                    "<string name=\"text\" value=\"&lt;été&gt;\"/>"
                                    "<bool name=\"flag\" value=\"false\"/>"
                                    "<float name=\"real\" value=\"2.75\"/>")));
    EXPECT_EQ(store.GetInt(L"number"), -5);
    EXPECT_EQ(store.GetInt2(L"pair"), std::pair(6, 7));
    EXPECT_EQ(store.GetString(L"text"), L"<été>");
    EXPECT_FALSE(store.GetBool(L"flag"));
    EXPECT_EQ(store.GetFloat(L"real"), 2.75f);
}

TEST(SettingsDocument, AnExtraSettingStaysOutOfTheNextSave) {
    SettingsStore store;
    RegisterSome(store);
    const std::string before = Document(store);
    EXPECT_TRUE(Load(store, Wrapped("<int name=\"nobody_knows\" value=\"5\"/>")));
    EXPECT_EQ(Document(store), before);
    EXPECT_EQ(store.Find(L"nobody_knows"), nullptr);
}

TEST(SettingsDocument, ABoolElementWithTheNameOfAnIntIsIgnored) {
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(store, Wrapped("<bool name=\"number\" value=\"1\"/>")));
    EXPECT_EQ(store.GetInt(L"number"), 10);
    EXPECT_FALSE(store.GetBool(L"number"));
}

TEST(SettingsDocument, AnElementOfAnyOtherTypeIsIgnored) {
    for (const char* type : {"int2", "string", "float", "bool", "Int", "integer", "x"}) {
        SettingsStore store;
        RegisterSome(store);
        const std::string before = Document(store);
        EXPECT_TRUE(
            Load(store, Wrapped("<" + std::string(type) + " name=\"number\" value=\"3\"/>")));
        EXPECT_EQ(Document(store), before) << type;
    }
}

TEST(SettingsDocument, ASizeOfZeroIsKept) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    EXPECT_TRUE(Load(store, Wrapped("<int name=\"app_window_width\" value=\"0\"/>")));
    EXPECT_EQ(store.GetInt(L"app_window_width"), 0);
}

TEST(SettingsDocument, AnElementWithoutNameOrValueIsIgnored) {
    SettingsStore store;
    RegisterSome(store);
    const std::string before = Document(store);
    EXPECT_TRUE(Load(store, Wrapped("<int name=\"number\"/><int value=\"3\"/><int/>"
                                    "<int2 name=\"pair\" value2=\"3\"/>")));
    EXPECT_EQ(Document(store), before);
}

TEST(SettingsDocument, OnlyChildrenOfTheRootCount) {
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(store, Wrapped("<x><int name=\"number\" value=\"3\"/></x>"
                                    "<!-- <int name=\"number\" value=\"4\"/> -->"
                                    "<![CDATA[<int name=\"number\" value=\"5\"/>]]>")));
    EXPECT_EQ(store.GetInt(L"number"), 10);
}

TEST(SettingsDocument, TheLaterOfTwoElementsWins) {
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(
        store, Wrapped("<int name=\"number\" value=\"3\"/><int name=\"NUMBER\" value=\"4\"/>")));
    EXPECT_EQ(store.GetInt(L"number"), 4);
}

TEST(SettingsDocument, IntegersAreReadInBaseTenAndStayInRange) {
    const NUMBER_CASE cases[] = {
        {"0",                        0            },
        {"-12",                      -12          },
        {"+12",                      12           },
        {" \t12",                    12           },
        {"012",                      12           },
        {"0x12",                     0            }, // the number ends at the x
        {"12abc",                    12           },
        {"12.9",                     12           },
        {"2147483647",               2147483647   },
        {"2147483648",               2147483647   },
        {"-2147483649",              -2147483648.0},
        {"99999999999999999999999",  2147483647   },
        {"-99999999999999999999999", -2147483648.0},
    };
    for (const NUMBER_CASE& one : cases) {
        SettingsStore store;
        RegisterSome(store);
        EXPECT_TRUE(
            Load(store, Wrapped("<int name=\"number\" value=\"" + std::string(one.text) + "\"/>")));
        EXPECT_EQ(store.GetInt(L"number"), one.expected) << one.text;
    }
}

TEST(SettingsDocument, AValueWithoutANumberLeavesTheDefault) {
    for (const char* text : {"", " ", "abc", "-", "+", "+-3", "--3", ".", "true", "٣"}) {
        SettingsStore store;
        RegisterSome(store);
        const std::string before = Document(store);
        EXPECT_TRUE(
            Load(store, Wrapped(Element("int", "number", text) + Element("float", "real", text) +
                                Element("int2", "pair", text))));
        EXPECT_EQ(Document(store), before) << text;
    }
}

TEST(SettingsDocument, APairWithoutASecondValueKeepsItsOwn) {
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(store, Wrapped("<int2 name=\"pair\" value=\"30\"/>")));
    EXPECT_EQ(store.GetInt2(L"pair"), std::pair(30, 21));
    EXPECT_TRUE(Load(store, Wrapped("<int2 name=\"pair\" value=\"31\" value2=\"x\"/>")));
    EXPECT_EQ(store.GetInt2(L"pair"), std::pair(31, 21));
    EXPECT_TRUE(Load(store, Wrapped("<int2 name=\"pair\" value=\"x\" value2=\"33\"/>")));
    EXPECT_EQ(store.GetInt2(L"pair"), std::pair(31, 33)) << "each is judged by itself";
}

TEST(SettingsDocument, ABoolIsTrueForTrueAndOneAlone) {
    const NUMBER_CASE cases[] = {
        {"true",  1},
        {"1",     1},
        {"false", 0},
        {"0",     0},
        {"TRUE",  0},
        {"yes",   0},
        {" true", 0},
        {"2",     0},
        {"",      0}
    };
    for (const NUMBER_CASE& one : cases) {
        SettingsStore store;
        store.RegisterBool(L"flag", one.expected == 0);
        EXPECT_TRUE(
            Load(store, Wrapped("<bool name=\"flag\" value=\"" + std::string(one.text) + "\"/>")));
        EXPECT_EQ(store.GetBool(L"flag"), one.expected == 1) << one.text;
    }
}

TEST(SettingsDocument, FloatsAreReadAsTextConversionReadsThem) {
    const NUMBER_CASE cases[] = {
        {"1.5",      1.5     },
        {"-0.25",    -0.25   },
        {"+2",       2       },
        {".5",       0.5     },
        {"5.",       5       },
        {"2.5e2",    250     },
        {" 3.5x",    3.5     },
        {"1,5",      1       },
        {"1e-60",    0       },
        {"16777216", 16777216},
    };
    for (const NUMBER_CASE& one : cases) {
        SettingsStore store;
        RegisterSome(store);
        EXPECT_TRUE(
            Load(store, Wrapped("<float name=\"real\" value=\"" + std::string(one.text) + "\"/>")));
        EXPECT_EQ(static_cast<double>(store.GetFloat(L"real")), one.expected) << one.text;
    }
}

TEST(SettingsDocument, FloatsThatAreNoFiniteNumberLeaveTheDefault) {
    for (const char* text : {"nan", "NAN", "-nan", "inf", "-inf", "infinity", "nan(1)", "1e39",
                             "-1e39", "1e400", "-1e99999999999"}) {
        SettingsStore store;
        RegisterSome(store);
        EXPECT_TRUE(
            Load(store, Wrapped("<float name=\"real\" value=\"" + std::string(text) + "\"/>")));
        EXPECT_EQ(store.GetFloat(L"real"), 0.5f) << text;
    }
}

TEST(SettingsDocument, AFloatThatIsNoNumberIsNotTakenBack) {
    SettingsStore store;
    RegisterSome(store);
    store.SetFloat(L"real", std::numeric_limits<float>::quiet_NaN());
    const std::string document = Document(store);
    SettingsStore next;
    RegisterSome(next);
    EXPECT_TRUE(Load(next, document));
    EXPECT_EQ(next.GetFloat(L"real"), 0.5f);
}

TEST(SettingsDocument, SaveLoadSaveWritesTheSameBytes) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    store.SetInt(L"app_window_width", std::numeric_limits<int32_t>::min());
    store.SetInt2(L"input rewind", -1, std::numeric_limits<int32_t>::max());
    store.SetFloat(L"audio_volume", std::numeric_limits<float>::max());
    store.SetFloat(L"audio_boost_low", -0.1f);
    store.SetFloat(L"audio_boost_mid", 12.3456789f);
    store.SetFloat(L"audio_boost_high", 1e-30f);
    store.SetBool(L"app_vsync", false);
    store.SetString(L"login_username", L"Zoë 漢字 \U0001F600 <&>\"'\t\r\n  ");
    store.SetString(L"login_userpass", L"&#x41;&#xZ\" &&#x;&amp;&#65; ]]> --");
    const std::string first = Document(store);
    SettingsStore next;
    RegisterDefaultSettings(next);
    ASSERT_TRUE(Load(next, first));
    EXPECT_EQ(Document(next), first);
    EXPECT_EQ(next.GetString(L"login_username"), store.GetString(L"login_username"));
    EXPECT_EQ(next.GetString(L"login_userpass"), store.GetString(L"login_userpass"));
    EXPECT_EQ(next.GetInt2(L"input rewind"), store.GetInt2(L"input rewind"));
    EXPECT_EQ(next.GetFloat(L"audio_volume"), store.GetFloat(L"audio_volume"));
}

TEST(SettingsDocument, EveryCharacterOfATextComesBack) {
    for (wchar_t c = 1; c < 0x300; ++c) {
        SettingsStore store;
        store.RegisterString(L"text", std::wstring(L"a") + c + L"&#x" + c + c);
        SettingsStore next;
        next.RegisterString(L"text", L"");
        ASSERT_TRUE(Load(next, Document(store))) << static_cast<int>(c);
        EXPECT_EQ(next.GetString(L"text"), store.GetString(L"text")) << static_cast<int>(c);
    }
}

TEST(SettingsDocument, CharactersThatXmlCannotHoldBecomeReplacements) {
    SettingsStore store;
    std::wstring text = L"a?b";
    for (const wchar_t c : {wchar_t{0}, wchar_t{0xD800}, wchar_t{0xFFFE}, wchar_t{0xFFFF}}) {
        text[1] = c;
        store.RegisterString(L"text", text);
        SettingsStore next;
        next.RegisterString(L"text", L"");
        ASSERT_TRUE(Load(next, Document(store)));
        EXPECT_EQ(next.GetString(L"text"), L"a\xFFFD"
                                           L"b");
    }
}

// What a user or another program may write into the file. All of it loads: the odd entry and the
// setting after it.
void ExpectWhole(const char* what, const std::string& document, const wchar_t* expected) {
    SettingsStore store;
    RegisterSome(store);
    std::string reason = "from before";
    const auto* bytes = reinterpret_cast<const uint8_t*>(document.data());
    EXPECT_TRUE(store.Load(bytes, document.size(), reason)) << what << ": " << reason;
    EXPECT_EQ(reason, "") << what;
    EXPECT_EQ(store.GetString(L"text"), expected) << what;
    EXPECT_EQ(store.GetInt(L"number"), 5) << what;
}

TEST(SettingsDocument, ADocumentWithSomethingOddInItLoadsWhole) {
    const std::string text = Element("string", "text", "new");
    const std::string number = Element("int", "number", "5");
    ExpectWhole("a bare ampersand", Wrapped(Element("string", "text", "Tom & Jerry") + number),
                L"Tom & Jerry");
    ExpectWhole("a reference without an end",
                Wrapped(Element("string", "text", "R&D;&amp") + number), L"R&D;&amp");
    ExpectWhole("a tag within a value", Wrapped(Element("string", "text", "<b/>") + number),
                L"<b/>");
    ExpectWhole("dashes in a comment", Wrapped("<!-- a -- b --->" + text + number), L"new");
    ExpectWhole("a document type", "<!DOCTYPE Settings>" + Wrapped(text + number), L"new");
    ExpectWhole("a document type with entities",
                "<!DOCTYPE Settings [<!ENTITY b \"c\">]>" + Wrapped(text + number), L"new");
    ExpectWhole("another root", "<Other>" + text + number + "</Other>", L"new");
    ExpectWhole("a second root", Wrapped(text + number) + "<Settings/>", L"new");
    ExpectWhole("the settings in the second root", "<Other/>" + Wrapped(text + number), L"new");
    ExpectWhole("words around the root", "one" + Wrapped(text + number) + "two", L"new");
    ExpectWhole("a byte order mark", "\xEF\xBB\xBF" + Wrapped(text + number), L"new");
    ExpectWhole("an instruction", "<?xml-style x?>" + Wrapped("<?x > <b> ?>" + text + number),
                L"new");
    ExpectWhole("an attribute twice",
                Wrapped("<string name=\"text\" value=\"new\" value=\"old\"/>" + number), L"new");
    ExpectWhole("a letter that is not UTF-8", Wrapped(Element("string", "text", "Zo\xEB") + number),
                L"Zo\xFFFD");
    ExpectWhole("a control character", Wrapped(Element("string", "text", "a\x01") + number),
                L"a\x01");
}

TEST(SettingsDocument, WhatFollowsAZeroByteIsSaidToBeUnread) {
    const std::string text =
        Wrapped(Element("int", "number", "5")) + std::string("\n\0<Settings/>", 13);
    std::vector<SETTING_ENTRY> entries;
    std::string reason;
    EXPECT_TRUE(ReadSettingsDocument(text, entries, reason));
    EXPECT_EQ(entries.size(), 1u);
    EXPECT_NE(reason, "");
}

TEST(SettingsDocument, AFaultEndsTheReadingThere) {
    const std::string before = "\n" + Element("int", "number", "5") + "\n";
    const std::string after = Element("string", "text", "new");
    const std::string faults[] = {
        "<bool name=\"flag\" value=false/>",
        "<bool name=\"flag\" value/>",
        "<bool name=\"flag\"value=\"false\"/>",
        "<bool name=\"flag\" value=\"false/>",
        "<bool name=\"flag\" value=\"false\"",
        "</Other>",
        "<!-- no end",
        "<>",
        "<![CDATA[",
    };
    for (const std::string& fault : faults) {
        SettingsStore store;
        RegisterSome(store);
        const std::string document = "<Settings>" + before + fault + after + "</Settings>";
        std::string reason;
        const auto* bytes = reinterpret_cast<const uint8_t*>(document.data());
        EXPECT_TRUE(store.Load(bytes, document.size(), reason)) << fault;
        EXPECT_TRUE(reason.starts_with("line 3: ")) << fault << ": " << reason;
        EXPECT_EQ(store.GetInt(L"number"), 5) << fault;
        EXPECT_TRUE(store.GetBool(L"flag")) << fault;
        EXPECT_EQ(store.GetString(L"text"), L"before") << fault;
    }
}

// A truncated value must not be read as a shorter one.
TEST(SettingsDocument, OfACutDocumentTheWholeElementsCount) {
    const std::string one = Element("int", "app_window_width", "1111");
    const std::string two = Element("int", "app_window_height", "2222");
    const std::string whole = Wrapped(one + two);
    const size_t endOfOne = whole.find(two);
    const size_t endOfTwo = endOfOne + two.size();
    for (size_t size = 0; size <= whole.size(); ++size) {
        SettingsStore store;
        RegisterDefaultSettings(store);
        EXPECT_EQ(Load(store, std::string_view(whole).substr(0, size)), size >= endOfOne) << size;
        EXPECT_EQ(store.GetInt(L"app_window_width"), size >= endOfOne ? 1111 : 1280) << size;
        EXPECT_EQ(store.GetInt(L"app_window_height"), size >= endOfTwo ? 2222 : 720) << size;
    }
}

TEST(SettingsDocument, WhatCannotBeReadFromTheStartChangesNothing) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    const std::string defaults = Document(store);
    const std::string texts[] = {
        "",
        " \n",
        "this is no XML",
        "<?xml version=\"1.0\" ?>",
        "<!-- a comment -->",
        std::string(1000, '\0'),
        "\xFF\xFE<\0S\0e\0t\0",
        "<Settings",
        "<Settings>",
        "</Settings>",
        "<Settings><int name=\"app_window_width\" value=5/></Settings>",
    };
    for (const std::string& text : texts) {
        std::string reason;
        EXPECT_FALSE(store.Load(reinterpret_cast<const uint8_t*>(text.data()), text.size(), reason))
            << text;
        EXPECT_TRUE(reason.starts_with("line ")) << text << ": " << reason;
        EXPECT_EQ(Document(store), defaults) << text;
    }
}

TEST(SettingsDocument, NoBytesAreNoDocument) {
    SettingsStore store;
    EXPECT_FALSE(store.Load(nullptr, 0));
}

TEST(SettingsDocument, ADeepDocumentIsNoMatter) {
    std::string text = "<Settings>" + Element("int", "number", "5");
    for (int i = 0; i < 500'000; ++i) {
        text += "<a>";
    }
    SettingsStore store;
    RegisterSome(store);
    EXPECT_TRUE(Load(store, text));
    EXPECT_EQ(store.GetInt(L"number"), 5);
}

TEST(SettingsDocument, AHugeDocumentIsRefused) {
    SettingsStore store;
    RegisterSome(store);
    const std::string good = "<int name=\"number\" value=\"5\"/>";
    std::string filling(kSettingsDocumentLimit - Wrapped(good).size(), ' ');
    EXPECT_FALSE(Load(store, Wrapped(good + filling + " ")));
    EXPECT_EQ(store.GetInt(L"number"), 10);
    EXPECT_TRUE(Load(store, Wrapped(good + filling)));
    EXPECT_EQ(store.GetInt(L"number"), 5);
}

TEST(SettingsDocument, ADocumentFullOfUnknownNamesLoads) {
    SettingsStore store;
    RegisterSome(store);
    std::string elements;
    for (int i = 0; i < 30'000; ++i) {
        elements += "<int name=\"unknown" + std::to_string(i) + "\" value=\"1\"/>\n";
    }
    EXPECT_TRUE(Load(store, Wrapped(elements + "<int name=\"number\" value=\"5\"/>")));
    EXPECT_EQ(store.GetInt(L"number"), 5);
}

// A locale whose decimal sign is a comma, if one is installed.
TEST(SettingsDocument, TheLocaleChangesNothing) {
    const std::string before =
        std::setlocale(LC_ALL, nullptr); // NOLINT(concurrency-mt-unsafe): one thread
    bool found = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8"}) {
        found = found || std::setlocale(LC_ALL, name) != nullptr; // NOLINT(concurrency-mt-unsafe)
    }
    if (!found) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    std::array<char, 16> comma{};
    std::snprintf(comma.data(), comma.size(), "%.1f", 0.5);
    SettingsStore store;
    RegisterSome(store);
    const bool loaded = Load(store, Wrapped("<float name=\"REAL\" value=\"1234.5\"/>"));
    const std::string document = Document(store);
    std::setlocale(LC_ALL, before.c_str()); // NOLINT(concurrency-mt-unsafe)
    EXPECT_STREQ(comma.data(), "0,5");
    EXPECT_TRUE(loaded);
    EXPECT_EQ(store.GetFloat(L"real"), 1234.5f);
    EXPECT_NE(document.find("value=\"1234.500000\""), std::string::npos);
}

} // namespace
