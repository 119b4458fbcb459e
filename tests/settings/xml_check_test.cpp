// What counts as a document at all, before any library reads it.
#include "settings/store/settings_private.h"
#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;

struct CASE {
    const char* what;
    std::string text;
};

std::string Nested(size_t depth) {
    std::string text;
    for (size_t i = 0; i < depth; ++i) {
        text += "<a>";
    }
    for (size_t i = 0; i < depth; ++i) {
        text += "</a>";
    }
    return text;
}

std::string WithAttributes(size_t count) {
    std::string text = "<a";
    for (size_t i = 0; i < count; ++i) {
        text += " n" + std::to_string(i) + "=\"\"";
    }
    return text + "/>";
}

TEST(XmlCheck, WellFormedDocumentsPass) {
    const CASE cases[] = {
        {"one element",                   "<Settings/>"                                                     },
        {"with a declaration",
         "<?xml version=\"1.0\" encoding='UTF-8' standalone=\"yes\" ?><a></a>"                              },
        {"with a byte order mark",        "\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<a/>\n"                   },
        {"comments anywhere",             "<!-- one --><a><!----><b/><!-- <c> & \" ' --></a><!-- end -->"   },
        {"tags within comments and data", "<a><!-- </a> --><![CDATA[</a><b>&]] >]]></a>"                    },
        {"an instruction",                "<?other x=\"1\" & y?><a/>"                                       },
        {"both quotes",                   "<a b='\"' c=\"'\" d = \"x > y\"\n e=''/>"                        },
        {"references",                    "<a b=\"&amp;&lt;&gt;&quot;&apos;&#65;&#x1F600;&#x01;\">&amp;</a>"},
        {"text and names beyond ASCII",   "<été à=\"ñ\">漢字</été>"                                 },
        {"a space within an end tag",     "<a></a \n>"                                                      },
        {"as deep as allowed",            Nested(kXmlDepthLimit)                                            },
        {"as many attributes as allowed", WithAttributes(kXmlAttributeLimit)                                },
    };
    for (const CASE& one : cases) {
        std::string reason;
        EXPECT_TRUE(CheckXml(one.text, reason)) << one.what << ": " << reason;
    }
}

TEST(XmlCheck, AnythingElseIsRefusedWithAReason) {
    const CASE cases[] = {
        {"nothing",                               ""                                          },
        {"white space",                           " \n"                                       },
        {"text",                                  "hello"                                     },
        {"only a declaration",                    "<?xml version=\"1.0\"?>"                   },
        {"text before the root",                  "x<a/>"                                     },
        {"text after the root",                   "<a/>x"                                     },
        {"a second root",                         "<a/><b/>"                                  },
        {"an open root",                          "<a>"                                       },
        {"an open child",                         "<a><b></a>"                                },
        {"a stray end tag",                       "</a>"                                      },
        {"another end tag",                       "<a></b>"                                   },
        {"an end tag in another case",            "<a></A>"                                   },
        {"an end tag with more to its name",      "<a></ab>"                                  },
        {"a cut tag",                             "<a"                                        },
        {"a cut attribute",                       "<a b"                                      },
        {"a cut value",                           "<a b=\"x"                                  },
        {"a value without quotes",                "<a b=x/>"                                  },
        {"no value",                              "<a b/>"                                    },
        {"no space between attributes",           "<a b=\"1\"c=\"2\"/>"                       },
        {"an attribute twice",                    "<a b=\"1\" b=\"2\"/>"                      },
        {"a tag within a value",                  "<a b=\"<c/>\"/>"                           },
        {"a document type",                       "<!DOCTYPE a><a/>"                          },
        {"a document type with entities",         "<!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>"},
        {"an unknown reference",                  "<a>&b;</a>"                                },
        {"a bare ampersand",                      "<a b=\"x & y\"/>"                          },
        {"an ampersand at the end",               "<a b=\"&\"/>"                              },
        {"a reference without a number",          "<a>&#;</a>"                                },
        {"a reference that is no number",         "<a>&#x1G;</a>"                             },
        {"a reference to NUL",                    "<a>&#0;</a>"                               },
        {"a reference to a surrogate",            "<a>&#xD800;</a>"                           },
        {"a reference beyond the last character", "<a>&#x110000;</a>"                         },
        {"a reference that overflows",            "<a>&#x100000041;</a>"                      },
        {"an open comment",                       "<a><!-- </a>"                              },
        {"dashes within a comment",               "<a><!-- -- --></a>"                        },
        {"a comment too short",                   "<a><!--></a>"                              },
        {"open data",                             "<a><![CDATA[ </a>"                         },
        {"data outside of the root",              "<![CDATA[x]]><a/>"                         },
        {"a declaration later",                   "<a/><?xml version=\"1.0\"?>"               },
        {"a declaration by another name",         "<?xml-x y?><a/>"                           },
        {"a declaration in capitals",             "<?XML version=\"1.0\"?><a/>"               },
        {"a declaration with more in it",         "<?xml version=\"1.0\" x=\"?>\"?><a/>"      },
        {"an open declaration",                   "<?xml version=\"1.0\""                     },
        {"an open instruction",                   "<a><?x </a>"                               },
        {"an instruction that hides a tag",       "<a><?x > <b> ?></a>"                       },
        {"NUL",                                   "<a>\0</a>"s                                },
        {"NUL after the root",                    "<a/>\0"s                                   },
        {"a control character",                   "<a>\x01</a>"                               },
        {"a byte that is not UTF-8",              "<a b=\"\xE9\"/>"                           },
        {"a character cut by the end",            "<a/>\xF0"                                  },
        {"a character that is none",              "<a>\xEF\xBF\xBF</a>"                       },
        {"a mark within a name",                  "<a \xEF\xBB\xBF"
                                 "b=\"\"/>"                   },
        {"one level too deep",                    Nested(kXmlDepthLimit + 1)                  },
        {"one attribute too many",                WithAttributes(kXmlAttributeLimit + 1)      },
    };
    for (const CASE& one : cases) {
        std::string reason;
        EXPECT_FALSE(CheckXml(one.text, reason)) << one.what;
        EXPECT_TRUE(reason.starts_with("line 1: ") || one.text == " \n")
            << one.what << ": " << reason;
        EXPECT_GT(reason.size(), 10u) << one.what;
    }
}

TEST(XmlCheck, TheReasonNamesTheLine) {
    std::string reason;
    EXPECT_FALSE(CheckXml("<a>\n<b>\n</c>\n</a>", reason));
    EXPECT_EQ(reason, "line 3: an end tag that closes nothing");
}

TEST(XmlCheck, AHundredThousandOpenTagsAreRefused) {
    std::string reason;
    EXPECT_FALSE(CheckXml(Nested(100'000), reason));
    EXPECT_NE(reason.find("too deeply"), std::string::npos);
}

TEST(XmlCheck, TooManyTagsAreRefused) {
    std::string text = "<a>";
    for (size_t i = 0; i < kXmlMarkupLimit - 2; ++i) {
        text += "<b/>";
    }
    std::string reason;
    EXPECT_TRUE(CheckXml(text + "</a>", reason)) << reason;
    EXPECT_FALSE(CheckXml(text + "<b/></a>", reason));
}

} // namespace
