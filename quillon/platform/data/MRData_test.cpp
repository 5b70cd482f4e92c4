#include "quillon/platform/data/MRData.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

std::string decoded(std::string_view text) {
  const auto bytes = mr_base64decode(text);
  return bytes ? std::string(textOf(*bytes)) : "refused";
}
std::string urlDecoded(std::string_view text) {
  const auto bytes = mr_base64URLdecode(text);
  return bytes ? std::string(textOf(*bytes)) : "refused";
}

// RFC 4648, section 10.
const std::pair<const char*, const char*> kBase64Vectors[] = {{"", ""},
                                                              {"f", "Zg=="},
                                                              {"fo", "Zm8="},
                                                              {"foo", "Zm9v"},
                                                              {"foob", "Zm9vYg=="},
                                                              {"fooba", "Zm9vYmE="},
                                                              {"foobar", "Zm9vYmFy"}};

TEST(mr_base64, GivesThePublishedTexts) {
  for (const auto& [plain, text] : kBase64Vectors) {
    EXPECT_EQ(mr_base64encode(bytesOf(plain)), text);
    EXPECT_EQ(decoded(text), plain);
  }
}

TEST(mr_base64, HasAnAlphabetForURLs) {
  const Bytes bytes{0xfb, 0xff, 0xbf, 0xfe};

  EXPECT_EQ(mr_base64encode(bytes), "+/+//g==");
  EXPECT_EQ(mr_base64URLencode(bytes), "-_-__g");
  EXPECT_EQ(mr_base64decode("+/+//g=="), bytes);
  EXPECT_EQ(mr_base64URLdecode("-_-__g"), bytes);
}

TEST(mr_base64, ReadsItsOwnAlphabetOnly) {
  EXPECT_EQ(decoded("-_-_"), "refused");
  EXPECT_EQ(urlDecoded("+/+/"), "refused");
}

TEST(mr_base64, RefusesWhatIsNotTheOneTextOfItsBytes) {
  for (const char* const text : {"Zg", "Zg=", "Zg===", "Zh==", "Zm9=", "Z===", "====", "=", "==",
                                 "Zg==Zg==", "Zm=v", "Zm9v\n", " Zm9v", "Zm 9v", "Zm9\xc3", "Z"}) {
    EXPECT_EQ(decoded(text), "refused") << text;
  }
  EXPECT_EQ(decoded(std::string_view("Zm9\0", 4)), "refused");
}

TEST(mr_base64URL, RefusesPaddingAndWhatIsNotTheOneTextOfItsBytes) {
  for (const char* const text : {"Zg==", "Zh", "Zm9", "Z", "Zm9vY", "Zm 8"}) {
    EXPECT_EQ(urlDecoded(text), "refused") << text;
  }
}

TEST(mr_base64, RoundTripsBytesOfEveryLength) {
  for (std::size_t length = 0; length < 70; ++length) {
    const Bytes bytes = mr_randomData(length);

    EXPECT_EQ(mr_base64decode(mr_base64encode(bytes)), bytes);
    EXPECT_EQ(mr_base64URLdecode(mr_base64URLencode(bytes)), bytes);
  }
}

TEST(mr_base64ToBase64URL, ChangesOnlyWhatDiffers) {
  EXPECT_EQ(mr_base64ToBase64URL("+/+//g=="), "-_-__g");
  EXPECT_EQ(mr_base64ToBase64URL("-_-__g"), "-_-__g");
  EXPECT_EQ(mr_base64ToBase64URL("Zm9v"), "Zm9v");
  EXPECT_EQ(mr_base64ToBase64URL("===="), "");
  EXPECT_EQ(mr_base64ToBase64URL(""), "");
}

TEST(hexText, WritesTwoLowerCaseDigitsForEachByte) {
  EXPECT_EQ(hexText(Bytes{0x00, 0x0f, 0xa0, 0xff}), "000fa0ff");
  EXPECT_EQ(hexText({}), "");
}

TEST(bytesFromHex, ReadsBothCases) {
  EXPECT_EQ(bytesFromHex("000fA0fF"), (Bytes{0x00, 0x0f, 0xa0, 0xff}));
  EXPECT_EQ(bytesFromHex(""), Bytes());
}

TEST(bytesFromHex, RefusesWhatIsNotHexadecimal) {
  for (const char* const text : {"0", "000", "0g", "g0", "0x", " 0", "/0", ":0", "@0", "`0"}) {
    EXPECT_EQ(bytesFromHex(text), std::nullopt) << text;
  }
}

TEST(sha256, GivesThePublishedDigests) {
  // FIPS 180-2, appendix B, and the empty message.
  EXPECT_EQ(mr_SHA256hex({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(mr_SHA256hex(bytesOf("abc")),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(mr_SHA256hex(bytesOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(mr_SHA256hex(Bytes(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

struct HmacCase {
  Bytes key;
  Bytes message;
  std::string digest;  // or its beginning
};
class hmacSHA256Vectors : public testing::TestWithParam<HmacCase> {};

TEST_P(hmacSHA256Vectors, AreThePublishedOnes) {
  const HmacCase& vector = GetParam();

  const std::string digest = hexText(hmacSHA256(vector.key, vector.message));

  EXPECT_EQ(digest.substr(0, vector.digest.size()), vector.digest);
}

Bytes counting(std::uint8_t from, std::uint8_t to) {
  Bytes bytes;
  for (; from <= to; ++from) bytes.push_back(from);
  return bytes;
}

// RFC 4231, section 4. The fifth is published with 128 bits only.
INSTANTIATE_TEST_SUITE_P(
    RFC4231, hmacSHA256Vectors,
    testing::Values(
        HmacCase{Bytes(20, 0x0b), mr_asData("Hi There"),
                 "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7"},
        HmacCase{mr_asData("Jefe"), mr_asData("what do ya want for nothing?"),
                 "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
        HmacCase{Bytes(20, 0xaa), Bytes(50, 0xdd),
                 "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
        HmacCase{counting(1, 25), Bytes(50, 0xcd),
                 "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b"},
        HmacCase{Bytes(20, 0x0c), mr_asData("Test With Truncation"),
                 "a3b6167473100ee06e0c796c2955552b"},
        HmacCase{Bytes(131, 0xaa),
                 mr_asData("Test Using Larger Than Block-Size Key - Hash Key First"),
                 "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"},
        HmacCase{Bytes(131, 0xaa),
                 mr_asData("This is a test using a larger than block-size key and a larger than "
                           "block-size data. The key needs to be hashed before being used by the "
                           "HMAC algorithm."),
                 "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2"}));

}  // namespace
}  // namespace quillon
