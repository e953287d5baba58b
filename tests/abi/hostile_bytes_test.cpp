// Bytes that nobody wrote: labels cut short, with one octet changed, and with their elements lost,
// repeated or of another type. Whatever is accepted must stay what it is when written again.

#include "abi/records.h"

namespace tq::abi {
namespace {

// Encodes without the checks of fetch(), of which there would be millions.
Bytes written(TqLabel label, Getter how) {
  std::uint32_t size = 0;
  if (how(label, nullptr, &size) != 0) return {};
  Bytes bytes(size);
  EXPECT_EQ(how(label, bytes.data(), &size), 0);
  return bytes;
}

enum class Answer { kRefused, kUnwritable, kTaken };

// How the bytes fare as a label or, with a version, as the body of one.
Answer ask(const Bytes& given, const char* version = nullptr) {
  const Bytes der(given.begin(), given.end());  // no more, so that a read behind them is seen
  const auto read = [version](const Bytes& bytes) {
    TqLabel slot = nullptr;
    if (version == nullptr) {
      const std::int32_t result = DecodeLabel(bytes.data(), size32(bytes), &slot);
      EXPECT_EQ(result == 0, slot != nullptr);
      return Label(slot);
    }
    Label label;
    set(label, GLSetVersion, text(version));
    const bool taken = DecodeLabelDecrypted(label, bytes.data(), size32(bytes)) == 0;
    return taken ? std::move(label) : Label(nullptr);
  };
  const Getter how = version == nullptr ? EncodeLabel : EncodeBodyPlaint;
  const Label label = read(der);
  if (label == nullptr) return Answer::kRefused;
  const Bytes first = written(label, how);
  if (first.empty()) return Answer::kUnwritable;
  const Label again = read(first);
  EXPECT_TRUE(again) << "what was written does not read";
  EXPECT_EQ(written(again, how), first);
  return Answer::kTaken;
}

// What reads the head only: the answers agree.
void ask_others(const Bytes& given) {
  static const Issuer issuer({{kCommonName, 19, text("A")}});
  const Bytes der(given.begin(), given.end());
  const auto length = static_cast<std::int32_t>(der.size());
  Bytes room(der.size() + 128);
  std::uint32_t size = size32(der);
  std::int32_t signed_size = length;
  TqLabel slot = nullptr;
  const std::int32_t opened =
      DecodeLabelEncrypted(der.data(), size32(der), room.data(), &size, &slot);
  EXPECT_EQ(opened == 0, slot != nullptr);
  FreeHandleLabel(slot);
  EXPECT_LE(size, der.size());
  const std::int32_t encrypted = LabelBodyWeatherEnc(der.data(), length);
  EXPECT_EQ(GetLable(der.data(), size32(der), room.data()) == 0, encrypted != -1);
  EXPECT_TRUE(GetSignAlgName(der.data(), length, room.data(), &size) != 0 || encrypted == 1);
  EXPECT_TRUE(GetCustomAttr(der.data(), length, room.data(), &signed_size) != 0 || encrypted >= 0);
  static_cast<void>(HavePadded(der.data(), size32(der), &size));
  static_cast<void>(HavePrivilege(der.data(), length, kHeadCert.data(), 1));
  static_cast<void>(HavePrivilegeOfHead(der.data(), length, kHeadCert.data(), 1, issuer.get()));
}

class HostileBytes : public testing::TestWithParam<const char*> {
 protected:
  const Label label_ = full_label(GetParam());
  const Bytes full_ = encode(label_);
  const Bytes body_ = encode(label_, EncodeBodyPlaint);
  const Bytes sealed_ = encode_sealed(label_, pattern(130));
};

TEST_P(HostileBytes, CutAnywhereAreNoLabel) {
  for (const Bytes& whole : {full_, sealed_, body_}) {
    for (std::size_t length = 0; length < whole.size(); length += quick() ? 5U : 1U) {
      const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(length));
      EXPECT_EQ(ask(cut), Answer::kRefused) << length;
      EXPECT_EQ(ask(cut, GetParam()), Answer::kRefused) << length;
      EXPECT_EQ(LabelBodyWeatherEnc(cut.data(), static_cast<std::int32_t>(length)), -1) << length;
      ask_others(cut);
    }
  }
}

TEST_P(HostileBytes, WithOneOctetChangedAreReadAsTheyAreWrittenOrNotAtAll) {
  Label small;
  fill(small, GetParam());
  const Bytes small_der = encode(small);
  for (const Bytes& good : {small_der, full_, sealed_, body_}) {
    Bytes der = good;
    for (std::size_t i = 0; i < der.size(); i += quick() ? 7U : 1U) {
      const unsigned old = good[i];
      std::vector<unsigned> values = {0,       0x7F,    0x80,    0x81,    0xFF,
                                      old ^ 1, old ^ 2, old + 1, old - 1, old ^ 32};
      for (unsigned value = 0; good == small_der && value < 256; ++value) values.push_back(value);
      for (const unsigned value : values) {
        der[i] = static_cast<std::uint8_t>(value);
        ask(der, good == body_ ? GetParam() : nullptr);
        if (good != body_) ask_others(der);
        ASSERT_FALSE(HasFailure()) << "octet " << i << " as " << value;
      }
      der[i] = good[i];
    }
  }
}

// The places where a label stays a label when its structure is changed there: "1.6.0" is the first
// element of the seventh element of the body, "!" stands behind what is read but not written.
using Change = void (*)(std::vector<Element>& siblings, long at);

// Certificates and the like: nobody looks inside.
bool is_kept_whole(const Element& element) {
  const Bytes der = element.der();
  return der == kHeadCert || der == kBodyCert ||
         (element.tag == 0x30 && element.children.size() == 1 && element.children[0].tag == 0x04);
}

std::string accepted(const Element& root, std::vector<Element>& siblings, const std::string& place,
                     Change change) {
  std::string places;
  for (std::size_t i = 0; i < siblings.size(); ++i) {
    const std::string here = place + std::to_string(i);
    const std::vector<Element> before = siblings;
    change(siblings, static_cast<long>(i));
    const Bytes changed = root.der();
    siblings = before;
    const Answer answer = ask(changed);
    ask_others(changed);
    if (answer != Answer::kRefused) places += here + (answer == Answer::kTaken ? " " : "! ");
    if (is_kept_whole(siblings[i])) continue;
    places += accepted(root, siblings[i].children, here + ".", change);
  }
  return places;
}

// Optional are list entries, the tails of the bodies and, in "1.1.2", the markings. Of another type
// may be signers' certificates, which are left out then, a seal's element and the first element of
// a tail. Repeated may be what nothing of a fixed place follows.
struct Places {
  const char* version;
  std::ptrdiff_t lost;  // how many of them
  const char* retagged;
  std::ptrdiff_t repeated;
};
constexpr Places kPlaces[] = {{"6.0", 10, "0.3.0! 1.1! 1.3.1.4 ", 55},
                              {"1.1", 24, "0.8.0! 1.1! 1.3.1.4 1.8 ", 107},
                              {"1.1.1", 24, "0.8.0! 1.1! 1.3.1.4 1.9 ", 111},
                              {"1.1.2", 27, "0.8.0! 1.0.0.0! 1.2.0.1.4 1.8 ", 116}};

TEST_P(HostileBytes, OfAnotherStructureDecodeOnlyWhereItIsOpen) {
  const auto* places = std::ranges::find(kPlaces, std::string_view(GetParam()), &Places::version);
  Element tree = parse(full_);
  const auto try_all = [&](Change change) { return accepted(tree, tree.children, "", change); };
  const std::string lost =
      try_all([](auto& siblings, long at) { siblings.erase(siblings.begin() + at); });
  EXPECT_EQ(std::ranges::count(lost, ' '), places->lost) << lost;
  const std::string retagged = try_all([](auto& siblings, long at) {
    Element& element = siblings.begin()[at];
    element.tag = element.constructed() ? 0x6B : 0x4B;
  });
  EXPECT_EQ(retagged, places->retagged);
  const std::string repeated = try_all([](auto& siblings, long at) {
    siblings.insert(siblings.begin() + at, Element(siblings.begin()[at]));
  });
  EXPECT_EQ(std::ranges::count(repeated, ' '), places->repeated) << repeated;
}

INSTANTIATE_TEST_SUITE_P(Each, HostileBytes, testing::ValuesIn(kVersions), name_of);

}  // namespace
}  // namespace tq::abi
