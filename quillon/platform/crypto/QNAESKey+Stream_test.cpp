#include <gtest/gtest.h>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/crypto/internal/QNCryptoTesting.h"

namespace quillon {
namespace {

using namespace cryptotesting;

// A reader over `bytes`; `failsAt` is the number of the call, from 0, that fails.
struct Source {
  Bytes bytes;
  int failsAt = -1;
  std::size_t at = 0;
  int calls = 0;
  std::size_t largestCount = 0;

  QNAESKey::Reader reader() {
    return [this](std::size_t count) -> std::optional<Bytes> {
      if (calls++ == failsAt) return std::nullopt;
      largestCount = std::max(largestCount, count);
      const std::size_t size = std::min(count, bytes.size() - at);
      at += size;
      return part(bytes, at - size, size);
    };
  }
};

struct Sink {
  Bytes bytes;
  int stopsAt = -1;
  int calls = 0;

  QNAESKey::Writer writer() {
    return [this](ByteView more) {
      if (calls++ == stopsAt) return false;
      bytes.insert(bytes.end(), more.begin(), more.end());
      return true;
    };
  }
};

// What a stream left behind.
struct Outcome {
  bool done;
  Bytes written;
  QNError error;
};

Outcome openedStream(const QNAESKeyRef& key, Bytes sealed) {
  Source source{std::move(sealed)};
  Sink sink;
  QNError error;
  const bool done = key->decryptDataWithReader(source.reader(), sink.writer(), &error);
  return {done, std::move(sink.bytes), std::move(error)};
}

constexpr std::size_t kSizes[] = {0,      1,       300,     65'535,        65'536,
                                  65'537, 131'072, 131'073, kThreeSegments};

TEST(QNAESKeyStream, SealsTheVeryBytesThatEncryptGives) {
  const QNScopedRandom random(repeating(patterned(24)));
  const auto key = fixedKey();
  for (const std::size_t size : kSizes) {
    Source source{patterned(size)};
    Sink sink;

    const bool done = key->encryptDataWithReader(source.reader(), sink.writer());

    EXPECT_TRUE(done) << size;
    EXPECT_EQ(sink.bytes, *key->encrypt(patterned(size))) << size;
  }
}

TEST(QNAESKeyStream, OpensWhatEncryptGives) {
  const auto key = QNAESKey::initWithRandomKey();
  for (const std::size_t size : kSizes) {
    const Outcome outcome = openedStream(key, *key->encrypt(patterned(size)));

    EXPECT_TRUE(outcome.done) << size;
    EXPECT_EQ(outcome.written, patterned(size)) << size;
  }
}

TEST(QNAESKeyStream, ReadsNoMoreThanASegmentAtATime) {
  const auto key = fixedKey();
  Source sealed{*key->encrypt(patterned(5 * QNAESKey::kSegmentSize))};
  Source plain{patterned(5 * QNAESKey::kSegmentSize)};
  Sink sink;

  ASSERT_TRUE(key->decryptDataWithReader(sealed.reader(), sink.writer()));
  ASSERT_TRUE(key->encryptDataWithReader(plain.reader(), sink.writer()));

  EXPECT_EQ(sealed.largestCount, kSealedSegment);
  EXPECT_EQ(plain.largestCount, QNAESKey::kSegmentSize);
}

TEST(QNAESKeyStream, AsksOnceMoreAfterAPieceThatWasShort) {
  const auto key = fixedKey();
  Source sealed{*key->encrypt(patterned(300))};
  Source plain{patterned(300)};
  Sink sink;

  EXPECT_TRUE(key->decryptDataWithReader(sealed.reader(), sink.writer()));
  EXPECT_TRUE(key->encryptDataWithReader(plain.reader(), sink.writer()));

  EXPECT_EQ(sealed.calls, 3);  // the head, the only piece, and none behind it
  EXPECT_EQ(plain.calls, 2);
}

// Gives the parts one by one, whatever it is asked for, as a pipe does; then nothing more.
QNAESKey::Reader pipeOf(std::vector<Bytes> parts) {
  return [parts = std::move(parts), at = std::size_t{0}](std::size_t) mutable {
    return std::optional(at < parts.size() ? parts[at++] : Bytes());
  };
}

TEST(QNAESKeyStream, RefusesBytesBehindAShortRead) {
  const auto key = fixedKey();
  const Bytes sealed = *key->encrypt(patterned(300));
  const Bytes head = part(sealed, 0, kHead), rest = part(sealed, kHead, sealed.size() - kHead);
  const Bytes begun = part(rest, 0, 100), ended = part(rest, 100, rest.size() - 100);
  Sink opened, encrypted;
  QNError error;

  EXPECT_FALSE(key->decryptDataWithReader(pipeOf({head, rest, {0}}), opened.writer(), &error));
  EXPECT_FALSE(key->decryptDataWithReader(pipeOf({head, begun, ended}), opened.writer()));
  EXPECT_FALSE(key->encryptDataWithReader(pipeOf({begun, ended}), encrypted.writer()));

  EXPECT_EQ(error.message, "the reader failed");
  EXPECT_TRUE(opened.bytes.empty());
  EXPECT_FALSE(key->decrypt(encrypted.bytes));
}

TEST(QNAESKeyStream, RefusesBytesBehindAnEmptyRead) {
  const auto key = fixedKey();
  Sink encrypted;

  EXPECT_FALSE(key->encryptDataWithReader(pipeOf({{}, patterned(300)}), encrypted.writer()));

  EXPECT_FALSE(key->decrypt(encrypted.bytes));
}

// Nothing but whole segments that were verified may have left, and the error is told.
void expectOnlyAVerifiedBeginning(const Outcome& outcome, const Bytes& plain,
                                  std::size_t verifiedSegments) {
  EXPECT_FALSE(outcome.done);
  EXPECT_EQ(outcome.written, part(plain, 0, verifiedSegments * QNAESKey::kSegmentSize));
  EXPECT_EQ(outcome.error.domainCodeString(), "MRErrorDomain 114");
}

TEST(QNAESKeyStream, ReleasesNothingOfASegmentWithABitFlipped) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(kThreeSegments), sealed = *key->encrypt(plain);
  std::vector<std::size_t> places{0, 3, 4, 15, 16, 22, 23, 27};
  for (std::size_t segment = 0; segment < 3; ++segment) {
    const std::size_t from = kHead + segment * kSealedSegment;
    const std::size_t to = std::min(from + kSealedSegment, sealed.size());
    places.insert(places.end(), {from, from + 1, (from + to) / 2, to - 17, to - 16, to - 1});
  }

  for (const std::size_t at : places) {
    const std::size_t verified = at < kHead ? 0 : (at - kHead) / kSealedSegment;
    SCOPED_TRACE(testing::Message() << "byte " << at);
    expectOnlyAVerifiedBeginning(openedStream(key, withBitFlipped(sealed, at * 8 + at % 8)), plain,
                                 verified);
  }
}

TEST(QNAESKeyStream, ReleasesNothingOfTheSegmentWhereItWasCut) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(kThreeSegments), sealed = *key->encrypt(plain);
  for (const std::size_t size :
       {0u, 1u, 27u, 28u, 29u, 43u, 44u, 65'579u, 65'580u, 65'581u, 65'595u, 65'596u, 131'131u,
        131'132u, 131'133u, 131'148u, 132'000u, 132'147u}) {
    SCOPED_TRACE(testing::Message() << size << " of " << sealed.size() << " bytes");
    ASSERT_LT(size, sealed.size());
    // A segment that is cut off behind its end turns into the last one, which it isn't.
    const std::size_t verified = size <= kHead ? 0 : (size - kHead - 1) / kSealedSegment;

    expectOnlyAVerifiedBeginning(openedStream(key, part(sealed, 0, size)), plain, verified);
  }
}

TEST(QNAESKeyStream, ReleasesNothingOfALastSegmentWithAnythingBehind) {
  const auto key = QNAESKey::initWithRandomKey();
  for (const std::size_t size : {std::size_t{131'072}, kThreeSegments}) {
    const Bytes plain = patterned(size), sealed = *key->encrypt(plain);
    const std::size_t verified = (size - 1) / QNAESKey::kSegmentSize;
    for (const std::size_t more : {1u, 2u, 15u, 16u, 17u, 63u, 64u}) {
      SCOPED_TRACE(testing::Message() << size << " and " << more);
      expectOnlyAVerifiedBeginning(openedStream(key, joined({sealed, Bytes(more, 0)})), plain,
                                   verified);
    }
  }
}

TEST(QNAESKeyStream, ReleasesNothingOfSegmentsMovedOrExchanged) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(kThreeSegments), sealed = *key->encrypt(plain);
  const Bytes other = *key->encrypt(plain);
  const Bytes head = part(sealed, 0, kHead);
  const Bytes first = part(sealed, kHead, kSealedSegment);
  const Bytes second = part(sealed, kHead + kSealedSegment, kSealedSegment);
  const Bytes last = part(sealed, kHead + 2 * kSealedSegment, 1'016);
  const Bytes otherSecond = part(other, kHead + kSealedSegment, kSealedSegment);
  const Bytes otherLast = part(other, kHead + 2 * kSealedSegment, 1'016);

  const struct {
    const char* name;
    Bytes bytes;
    std::size_t verified;
  } cases[] = {
      {"first two exchanged", joined({head, second, first, last}), 0},
      {"second dropped", joined({head, first, last}), 1},
      {"first dropped", joined({head, second, last}), 0},
      {"last dropped", joined({head, first, second}), 1},
      {"first twice", joined({head, first, first, second, last}), 1},
      {"last twice", joined({head, first, second, last, last}), 2},
      {"second of another message", joined({head, first, otherSecond, last}), 1},
      {"last of another message", joined({head, first, second, otherLast}), 2},
      {"head of another message", joined({part(other, 0, kHead), first, second, last}), 0},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    expectOnlyAVerifiedBeginning(openedStream(key, each.bytes), plain, each.verified);
  }
}

TEST(QNAESKeyStream, ReleasesNothingUnderAnotherKey) {
  const Bytes plain = patterned(kThreeSegments);
  const Bytes sealed = *QNAESKey::initWithRandomKey()->encrypt(plain);

  expectOnlyAVerifiedBeginning(openedStream(QNAESKey::initWithRandomKey(), sealed), plain, 0);
}

TEST(QNAESKeyStream, StopsWhereTheReaderFails) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(kThreeSegments);
  for (int call = 0; call < 5; ++call) {
    SCOPED_TRACE(call);
    Source source{*key->encrypt(plain), call};
    Sink sink;
    QNError error;

    const bool done = key->decryptDataWithReader(source.reader(), sink.writer(), &error);

    // One call for the head, and one segment is read ahead.
    const auto verified = static_cast<std::size_t>(std::max(0, call - 2));
    expectOnlyAVerifiedBeginning({done, sink.bytes, error}, plain, verified);
  }
}

TEST(QNAESKeyStream, StopsWhereTheReaderFailsWhenSealing) {
  const auto key = QNAESKey::initWithRandomKey();
  for (int call = 0; call < 4; ++call) {
    Source source{patterned(kThreeSegments), call};
    Sink sink;
    QNError error;

    const bool done = key->encryptDataWithReader(source.reader(), sink.writer(), &error);

    EXPECT_FALSE(done) << call;
    EXPECT_EQ(error.message, "the reader failed") << call;
    EXPECT_FALSE(key->decrypt(sink.bytes)) << call;
  }
}

TEST(QNAESKeyStream, StopsWhereTheWriterStops) {
  const auto key = QNAESKey::initWithRandomKey();
  const Bytes plain = patterned(kThreeSegments);
  for (int call = 0; call < 3; ++call) {
    SCOPED_TRACE(call);
    Source sealed{*key->encrypt(plain)}, clear{plain};
    Sink opened{{}, call}, encrypted{{}, call};
    QNError error;

    EXPECT_FALSE(key->decryptDataWithReader(sealed.reader(), opened.writer(), &error));
    EXPECT_FALSE(key->encryptDataWithReader(clear.reader(), encrypted.writer()));

    EXPECT_EQ(error.message, "the writer stopped");
    EXPECT_EQ(opened.calls, call + 1);
    EXPECT_EQ(encrypted.calls, call + 1);
  }
}

TEST(QNAESKeyStream, RefusesAReaderThatGivesMoreThanItWasAskedFor) {
  const auto key = fixedKey();
  Sink sink;
  const auto generous = [](std::size_t count) { return std::optional(Bytes(count + 1)); };

  QNError error;
  EXPECT_FALSE(key->encryptDataWithReader(generous, sink.writer(), &error));
  EXPECT_FALSE(key->decryptDataWithReader(generous, sink.writer()));

  EXPECT_EQ(error.message, "the reader failed");
}

TEST(QNAESKeyStream, RefusesAnAbsentReaderOrWriterBeforeItTouchesTheOther) {
  const auto key = fixedKey();
  Source source{*key->encrypt(patterned(300))};
  Sink sink;
  const auto refusal = [](const auto& operation) {
    QNError error;
    EXPECT_FALSE(operation(&error));
    EXPECT_EQ(error.code, kErrorUnreadableData);
    return error.message;
  };

  for (const std::string& message :
       {refusal([&](QNError* e) { return key->decryptDataWithReader({}, sink.writer(), e); }),
        refusal([&](QNError* e) { return key->decryptDataWithReader(source.reader(), {}, e); }),
        refusal([&](QNError* e) { return key->encryptDataWithReader({}, sink.writer(), e); }),
        refusal([&](QNError* e) { return key->encryptDataWithReader(source.reader(), {}, e); })}) {
    EXPECT_EQ(message, "no reader or writer");
  }
  EXPECT_EQ(source.calls, 0);
  EXPECT_EQ(sink.calls, 0);
}

TEST(QNAESKeyStream, WorksInsideTheWriterOfAnother) {
  const auto key = fixedKey();
  const Bytes plain = patterned(kThreeSegments);
  Source source{plain};
  Bytes opened;

  const bool done = key->encryptDataWithReader(source.reader(), [&](ByteView more) {
    const auto again = key->decrypt(*key->encrypt(more));
    opened.insert(opened.end(), again->begin(), again->end());
    return true;
  });

  ASSERT_TRUE(done);
  EXPECT_EQ(key->decrypt(opened), plain);
}

TEST(QNAESKeyStream, DoesNothingWithTheKeyOfAbsentData) {
  const auto dead = QNAESKey::initWithKeyData(std::nullopt);
  Source source{*fixedKey()->encrypt(patterned(300))};
  Sink sink;
  QNError error;

  EXPECT_FALSE(dead->decryptDataWithReader(source.reader(), sink.writer(), &error));
  EXPECT_FALSE(dead->encryptDataWithReader(source.reader(), sink.writer()));

  EXPECT_EQ(error.message, "the key holds no key data");
  EXPECT_EQ(source.calls, 0);
  EXPECT_EQ(sink.calls, 0);
}

}  // namespace
}  // namespace quillon
