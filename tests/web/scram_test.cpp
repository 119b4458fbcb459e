#include "web/scram.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

// The example of RFC 7677, section 3.
constexpr std::string_view kNonce = "rOprNGfwEbeRWgbNEkqO";
constexpr std::string_view kFirst = "n=user,r=rOprNGfwEbeRWgbNEkqO";
constexpr std::string_view kChallenge =
    "r=rOprNGfwEbeRWgbNEkqO%hvYDpWUa2RaTCAfuxFIlj)hNlF$k0,s=W22ZaJ0SNY7soEsUEjb6gQ==,i=4096";
constexpr std::string_view kProof = "c=biws,r=rOprNGfwEbeRWgbNEkqO%hvYDpWUa2RaTCAfuxFIlj)hNlF$k0,"
                                    "p=dHzbZapWIk4jUhN+Ute9ytag9zjfMHgsqmmiz7AndVQ=";
constexpr std::string_view kVerdict = "v=6rriTRBi23WpRR/wtup+mMhUZUn/dB5nLTJRsjl95G4=";

SCRAM_PROOF ProofWith(std::string_view password) {
    SCRAM_CHALLENGE challenge;
    EXPECT_TRUE(ReadScramChallenge(kChallenge, kNonce, challenge));
    const SCRAM_KEYS keys = DeriveScramKeys(password, challenge.salt, challenge.iterations);
    return MakeScramProof(kFirst, challenge, keys);
}

bool IsChallenge(const std::string& text) {
    SCRAM_CHALLENGE challenge;
    return ReadScramChallenge(text, "abc", challenge);
}

std::string Base64Of(std::string_view text) {
    return Base64Text({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

} // namespace

TEST(Scram, MakesTheProofOfTheStandardsExample) {
    EXPECT_EQ(ScramFirstMessage("user", kNonce), kFirst);
    EXPECT_EQ(ProofWith("pencil").message, kProof);
}

TEST(Scram, KnowsTheServerOfTheStandardsExample) {
    EXPECT_TRUE(ServerIsProved(ProofWith("pencil"), kVerdict));
    EXPECT_FALSE(ServerIsProved(ProofWith("Pencil"), kVerdict));
}

TEST(Scram, RefusesAServerThatDoesNotKnowTheMember) {
    const SCRAM_PROOF proof = ProofWith("pencil");
    for (const char* verdict :
         {"", "v=", "v=6rri", "e=invalid-proof", "x=6rriTRBi23WpRR/wtup+mMhUZUn/dB5nLTJRsjl95G4=",
          "v=6rriTRBi23WpRR/wtup+mMhUZUn/dB5nLTJRsjl95G5=",
          "v=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="}) {
        EXPECT_FALSE(ServerIsProved(proof, verdict)) << verdict;
    }
}

TEST(Scram, EscapesWhatSeparatesTheMessagesParts) {
    EXPECT_EQ(ScramFirstMessage("a=b,c", "n"), "n=a=3Db=2Cc,r=n");
}

TEST(Scram, ReadsAChallenge) {
    SCRAM_CHALLENGE challenge;
    ASSERT_TRUE(ReadScramChallenge("r=abcdef,s=AQID,i=5000,x=later", "abc", challenge));
    EXPECT_EQ(challenge.nonce, "abcdef");
    EXPECT_EQ(challenge.salt, (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_EQ(challenge.iterations, 5000u);
    EXPECT_EQ(challenge.text, "r=abcdef,s=AQID,i=5000,x=later");
}

TEST(Scram, RefusesAnotherNonceThanItsOwnMadeLonger) {
    EXPECT_TRUE(IsChallenge("r=abcdef,s=AQID,i=5000"));
    EXPECT_FALSE(IsChallenge("r=abc,s=AQID,i=5000")) << "the service has added nothing";
    EXPECT_FALSE(IsChallenge("r=abxdef,s=AQID,i=5000"));
    EXPECT_FALSE(IsChallenge("r=,s=AQID,i=5000"));
}

TEST(Scram, RefusesTooFewAndTooManyIterations) {
    const std::string start = "r=abcdef,s=AQID,i=";
    EXPECT_TRUE(IsChallenge(start + "4096"));
    EXPECT_TRUE(IsChallenge(start + "200000"));
    for (const char* count : {"4095", "1", "0", "-1", "200001", "4294967295", "4294971392",
                              "99999999999999999999", "", "x", "4096x", "+4096", " 4096"}) {
        EXPECT_FALSE(IsChallenge(start + count)) << count;
    }
}

TEST(Scram, RefusesWhatIsNoChallenge) {
    for (const char* text : {"", "r", "r=", "r=abcdef", "r=abcdef,s=AQID", "s=AQID,r=abcdef,i=4096",
                             "r=abcdef,s=,i=4096", "r=abcdef,s=A,i=4096", "r=abcdef,s=AQI*,i=4096",
                             "m=x,r=abcdef,s=AQID,i=4096", "e=other-error"}) {
        EXPECT_FALSE(IsChallenge(text)) << text;
    }
    EXPECT_FALSE(IsChallenge("r=abc" + std::string(2000, 'x') + ",s=AQID,i=4096"));
}

TEST(Scram, NoncesAreNeverTheSame) {
    std::set<std::string> nonces;
    for (int i = 0; i < 100; ++i) {
        const std::string nonce = MakeScramNonce();
        EXPECT_EQ(nonce.size(), 24u);
        EXPECT_EQ(nonce.find(','), std::string::npos);
        nonces.insert(nonce);
    }
    EXPECT_EQ(nonces.size(), 100u);
}

// The examples of RFC 4648, section 10.
TEST(Base64, IsThatOfTheStandard) {
    const std::pair<const char*, const char*> rows[] = {
        {"",       ""        },
        {"f",      "Zg=="    },
        {"fo",     "Zm8="    },
        {"foo",    "Zm9v"    },
        {"foob",   "Zm9vYg=="},
        {"fooba",  "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
    };
    for (const auto& [text, packed] : rows) {
        EXPECT_EQ(Base64Of(text), packed);
        const auto bytes = Base64Bytes(packed);
        ASSERT_TRUE(bytes) << packed;
        EXPECT_EQ(std::string(bytes->begin(), bytes->end()), text);
    }
}

TEST(Base64, HasOneTextForTheSameBytes) {
    for (const char* text : {"Z", "Zg", "Zg=", "Zg=A", "Zh==", "Zm9=", "====", "A===", "Zm9v\n",
                             " Zm9v", "Zm 9", "Zg==Zg=="}) {
        EXPECT_FALSE(Base64Bytes(text)) << text;
    }
}

TEST(Secrets, AreWiped) {
    std::string secret = "pencil";
    const char* const bytes = secret.data();
    WipeSecret(secret);
    EXPECT_TRUE(secret.empty());
    EXPECT_EQ(bytes[1], '\0');
    EXPECT_EQ(bytes[5], '\0');
}
