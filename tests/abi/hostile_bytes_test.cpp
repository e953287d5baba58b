// Bytes that nobody wrote: labels cut short, with one octet changed, and with their elements lost,
// repeated or of another type. Whatever is accepted must stay what it is when written again.

#include <functional>
#include <set>

#include "abi/support.h"

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

Label read(const Bytes& der) {
  TqLabel slot = nullptr;
  static_cast<void>(DecodeLabel(der.data(), size32(der), &slot));
  return Label(slot);
}

// A block of exactly these bytes, so that a read behind them is seen.
Bytes exact(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

struct Answers {
  bool decodes = false;
  bool encodes = false;
};

Answers ask_label(const Bytes& der) {
  Answers answers;
  const Label label = read(der);
  answers.decodes = label != nullptr;
  if (!answers.decodes) return answers;
  const Bytes first = written(label, EncodeLabel);
  answers.encodes = !first.empty();
  if (!answers.encodes) return answers;
  const Label again = read(first);
  EXPECT_TRUE(again) << "what was written does not read";
  EXPECT_EQ(written(again, EncodeLabel), first);
  return answers;
}

Answers ask_body(const Bytes& der, const char* version) {
  Answers answers;
  const Label label;
  set(label, GLSetVersion, text(version));
  answers.decodes = DecodeLabelDecrypted(label, der.data(), size32(der)) == 0;
  if (!answers.decodes) return answers;
  const Bytes first = written(label, EncodeBodyPlaint);
  answers.encodes = !first.empty();
  if (!answers.encodes) return answers;
  EXPECT_EQ(DecodeLabelDecrypted(label, first.data(), size32(first)), 0);
  EXPECT_EQ(written(label, EncodeBodyPlaint), first);
  return answers;
}

void ask_sealed(const Bytes& der) {
  Bytes room(der.size());
  std::uint32_t size = size32(room);
  TqLabel slot = nullptr;
  const std::int32_t result =
      DecodeLabelEncrypted(der.data(), size32(der), room.data(), &size, &slot);
  EXPECT_EQ(result == 0, slot != nullptr);
  EXPECT_LE(size, der.size());
  FreeHandleLabel(slot);
  static_cast<void>(DecodeLabelEncrypted(der.data(), size32(der), nullptr, &size, nullptr));
  EXPECT_LE(size, der.size());
}

void ask_peeks(const Bytes& der) {
  static const Issuer issuer({{kCommonName, 19, text("A")}});
  const auto length = static_cast<std::int32_t>(der.size());
  std::uint8_t room[512];
  std::uint32_t size = sizeof room;
  std::int32_t signed_size = sizeof room;
  std::uint32_t flag = 0;
  const std::uint8_t serial = 0;
  const std::int32_t encrypted = LabelBodyWeatherEnc(der.data(), length);
  EXPECT_TRUE(encrypted >= -1 && encrypted <= 1);
  EXPECT_EQ(GetLable(der.data(), size32(der), room) == 0, encrypted != -1);
  EXPECT_TRUE(GetSignAlgName(der.data(), length, room, &size) != 0 || encrypted == 1);
  EXPECT_TRUE(GetCustomAttr(der.data(), length, room, &signed_size) != 0 || encrypted != -1);
  static_cast<void>(HavePadded(der.data(), size32(der), &flag));
  static_cast<void>(HavePrivilege(der.data(), length, &serial, 1));
  static_cast<void>(HavePrivilegeOfHead(der.data(), length, &serial, 1, issuer.get()));
}

// Where a changed octet may give a label that can be read but not written: in the identifier of a
// name's attribute, in the tag of an element that is kept whole and must be a SEQUENCE, and in the
// length of the body's signature value, which may swallow all of the certificate behind it but for
// something that is none.
std::set<std::size_t> unwritable_places(const Bytes& der) {
  std::set<std::size_t> places;
  for (const Bytes& kept : {kHeadCert, kBodyCert}) {
    for (auto at = der.begin();
         (at = std::search(at, der.end(), kept.begin(), kept.end())) != der.end(); ++at) {
      places.insert(static_cast<std::size_t>(at - der.begin()));
    }
  }
  const std::function<void(const Element&)> find = [&](const Element& element) {
    const bool signs = element.children.size() > 1 && element.children[1].der() == kBodyCert;
    if (signs) places.insert(element.children[0].start + 1);
    for (const Element& child : element.children) {
      find(child);
      if (element.tag != 0x31 || child.children.empty()) continue;
      const Element& type = child.children.front();
      for (std::size_t i = 0; type.tag == 0x06 && i < type.content.size(); ++i) {
        places.insert(type.start + 2 + i);
      }
    }
  };
  find(parse(der));
  return places;
}

std::vector<std::uint8_t> replacements(std::uint8_t octet, bool all) {
  std::vector<std::uint8_t> values;
  if (all) {
    for (unsigned value = 0; value < 256; ++value)
      values.push_back(static_cast<std::uint8_t>(value));
  } else {
    for (const unsigned value : {0x00U, 0x7FU, 0x80U, 0x81U, 0xFFU, octet ^ 1U, octet ^ 0x20U,
                                 octet + 1U, octet - 1U, octet ^ 0x80U}) {
      values.push_back(static_cast<std::uint8_t>(value));
    }
  }
  std::erase(values, octet);
  return values;
}

void change_each_octet(const Bytes& good, bool all,
                       const std::function<Answers(const Bytes&)>& ask) {
  const std::set<std::size_t> unwritable = unwritable_places(good);
  std::size_t accepted = 0;
  Bytes der = exact(good);
  for (std::size_t i = 0; i < der.size(); i += quick() ? 7U : 1U) {
    for (const std::uint8_t value : replacements(good[i], all && !quick())) {
      der[i] = value;
      const Answers answers = ask(der);
      accepted += answers.decodes ? 1U : 0U;
      ASSERT_FALSE(testing::Test::HasFailure()) << "octet " << i << " as " << int{value};
      ASSERT_TRUE(!answers.decodes || answers.encodes || unwritable.contains(i))
          << "octet " << i << " as " << int{value} << " reads but does not write";
    }
    der[i] = good[i];
  }
  EXPECT_GT(accepted, 0U) << "texts may say anything";
}

class HostileBytes : public testing::TestWithParam<const char*> {};

TEST_P(HostileBytes, CutAnywhereAreNoLabel) {
  Label label;
  fill_records(label, GetParam());
  const Bytes der = encode(label);
  const Bytes sealed = encode_sealed(label, pattern(300));
  const Bytes body = encode(label, EncodeBodyPlaint);
  for (const Bytes& whole : {der, sealed, body}) {
    for (std::size_t length = 0; length < whole.size(); length += quick() ? 5U : 1U) {
      const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(length));
      EXPECT_FALSE(ask_label(cut).decodes) << length;
      EXPECT_FALSE(ask_body(cut, GetParam()).decodes) << length;
      EXPECT_EQ(LabelBodyWeatherEnc(cut.data(), static_cast<std::int32_t>(length)), -1) << length;
      ask_sealed(cut);
      ask_peeks(cut);
    }
  }
}

TEST_P(HostileBytes, WithOneOctetOfASmallLabelChanged) {
  Label label;
  fill(label, GetParam());
  change_each_octet(encode(label), true, [](const Bytes& der) {
    ask_sealed(der);
    ask_peeks(der);
    return ask_label(der);
  });
}

TEST_P(HostileBytes, WithOneOctetOfAFullLabelChanged) {
  Label label;
  fill_records(label, GetParam());
  change_each_octet(encode(label), false, [](const Bytes& der) {
    ask_sealed(der);
    ask_peeks(der);
    return ask_label(der);
  });
}

TEST_P(HostileBytes, WithOneOctetOfABodyOrASealedLabelChanged) {
  Label label;
  fill_records(label, GetParam());
  change_each_octet(encode(label, EncodeBodyPlaint), false,
                    [](const Bytes& der) { return ask_body(der, GetParam()); });
  change_each_octet(encode_sealed(label, pattern(130)), false, [](const Bytes& der) {
    ask_sealed(der);
    ask_peeks(der);
    return Answers{true, true};
  });
}

// One change to the structure, named by the place of the element: "1.6.0" is the first element of
// the seventh element of the body.
using Change = void (*)(std::vector<Element>& siblings, std::size_t at);
using Visit = std::function<void(const std::string& place, const Element& parent, std::size_t at)>;
using Places = std::set<std::string>;

void for_each_element(const Element& parent, const std::string& place, const Visit& visit) {
  for (std::size_t i = 0; i < parent.children.size(); ++i) {
    const std::string here = place + (place.empty() ? "" : ".") + std::to_string(i);
    visit(here, parent, i);
    const Bytes der = parent.children[i].der();
    if (der == kHeadCert || der == kBodyCert) continue;  // kept whole: nobody looks inside
    for_each_element(parent.children[i], here, visit);
  }
}

Bytes changed(const Element& root, const std::string& place, Change change) {
  Element tree = root;
  Element* parent = &tree;
  std::size_t at = 0;
  for (std::size_t from = 0; from < place.size(); from = place.find('.', from) + 1) {
    at = static_cast<std::size_t>(std::atoi(place.c_str() + from));
    if (place.find('.', from) == std::string::npos) break;
    parent = &parent->children[at];
  }
  change(parent->children, at);
  return tree.der();
}

Places accepted_changes(const Element& tree, Change change) {
  Places accepted;
  for_each_element(tree, "", [&](const std::string& place, const Element&, std::size_t) {
    const Bytes der = exact(changed(tree, place, change));
    const Answers answers = ask_label(der);
    ask_sealed(der);
    ask_peeks(der);
    EXPECT_FALSE(testing::Test::HasFailure()) << place;
    if (answers.decodes) accepted.insert(place + (answers.encodes ? "" : " unwritable"));
  });
  return accepted;
}

Element full_tree(const char* version) {
  Label label;
  fill_records(label, version);
  return parse(encode(label));
}

Places both(Places left, const Places& right) {
  left.insert(right.begin(), right.end());
  return left;
}

// The optional elements and the entries of lists, by version.
Places optional_places(std::string_view version) {
  const Places envelope_list = {"0.2.0", "0.2.1", "0.7.3.0.0", "0.7.3.0.1"};
  const Places privileges = {"1.2.0.0",         "1.2.0.1",         "1.2.0.0.1.9",
                             "1.2.0.1.1.9",     "1.2.0.0.1.9.0.0", "1.2.0.0.1.9.0.1",
                             "1.2.0.1.1.9.0.0", "1.2.0.1.1.9.0.1"};
  const Places markings = {"1.3.1.1.0", "1.3.1.4",     "1.5.1.0.0",
                           "1.5.1.0.1", "1.5.1.0.0.0", "1.5.1.0.1.0"};
  if (is_60(version)) return both(markings, {"1.8.0.0", "1.8.0.1", "1.9.0.0", "1.9.0.1"});
  if (version == "1.1") {
    return both(both(both(envelope_list, privileges), markings),
                {"1.8", "1.8.0.0.0", "1.8.0.0.1", "1.9", "1.9.0.0.0", "1.9.0.0.1"});
  }
  if (version == "1.1.1") {
    return both(both(both(envelope_list, privileges), markings),
                {"1.9", "1.9.0.0.0", "1.9.0.0.1", "1.10", "1.10.0.0.0", "1.10.0.0.1"});
  }
  // One element instead of value and certificate, and one more level in each marking.
  return both(envelope_list, {"1.1.0.0",
                              "1.1.0.1",
                              "1.1.0.0.1.9",
                              "1.1.0.1.1.9",
                              "1.1.0.0.1.9.0.0",
                              "1.1.0.0.1.9.0.1",
                              "1.1.0.1.1.9.0.0",
                              "1.1.0.1.1.9.0.1",
                              "1.2",
                              "1.2.0.1.1.0",
                              "1.2.0.1.4",
                              "1.3",
                              "1.4",
                              "1.4.0.1.0.0",
                              "1.4.0.1.0.1",
                              "1.4.0.1.0.0.0",
                              "1.4.0.1.0.1.0",
                              "1.8",
                              "1.8.0.0.0",
                              "1.8.0.0.1",
                              "1.9",
                              "1.9.0.0.0",
                              "1.9.0.0.1"});
}

TEST_P(HostileBytes, WithoutAnElementDecodeOnlyWhereItIsOptional) {
  const Change lose = [](std::vector<Element>& siblings, std::size_t at) {
    siblings.erase(siblings.begin() + static_cast<long>(at));
  };
  EXPECT_EQ(accepted_changes(full_tree(GetParam()), lose), optional_places(GetParam()));
}

TEST_P(HostileBytes, WithAnElementOfAnotherTypeDecodeOnlyWhereTheTypeIsOpen) {
  const Change retag = [](std::vector<Element>& siblings, std::size_t at) {
    siblings[at].tag = siblings[at].constructed() ? 0x6B : 0x4B;
  };
  // Signers' certificates are left out, a seal's element may be anything, and so may the first
  // element of the tail of a "1.1" body, which ends there.
  const std::pair<const char*, Places> expected[] = {
      {"6.0", {"0.3.0 unwritable", "1.1 unwritable", "1.3.1.4"}},
      {"1.1", {"0.8.0 unwritable", "1.1 unwritable", "1.3.1.4", "1.8"}},
      {"1.1.1", {"0.8.0 unwritable", "1.1 unwritable", "1.3.1.4", "1.9"}},
      {"1.1.2", {"0.8.0 unwritable", "1.0.0.0 unwritable", "1.2.0.1.4", "1.8"}},
  };
  for (const auto& [version, places] : expected) {
    if (std::string_view(version) != GetParam()) continue;
    EXPECT_EQ(accepted_changes(full_tree(version), retag), places);
  }
}

TEST_P(HostileBytes, WithAnElementTwiceDecodeWhereWhatFollowsStillFits) {
  const Change repeat = [](std::vector<Element>& siblings, std::size_t at) {
    const Element copy = siblings[at];
    siblings.insert(siblings.begin() + static_cast<long>(at), copy);
  };
  // Tagged markings replace one another. The tail of a "1.1" body may begin with anything, and
  // content attributes read as file align sizes, for they begin with three numbers.
  const std::pair<const char*, Places> special[] = {{"6.0", {}},
                                                    {"1.1", {"1.7"}},
                                                    {"1.1.1", {"1.7", "1.8"}},
                                                    {"1.1.2", {"1.2", "1.3", "1.4", "1.6", "1.7"}}};
  const Element tree = full_tree(GetParam());
  Places expected;
  for (const auto& [version, places] : special) {
    if (std::string_view(version) == GetParam()) expected = places;
  }
  for_each_element(tree, "", [&](const std::string& place, const Element& parent, std::size_t at) {
    const auto& siblings = parent.children;
    const bool alike =
        std::all_of(siblings.begin() + static_cast<long>(at), siblings.end(),
                    [&](const Element& later) { return later.tag == siblings[at].tag; });
    // What is behind the last element of a record is ignored; EXPLICIT tags hold exactly one.
    const bool last = at + 1 == siblings.size();
    const bool shifts = alike && (!siblings[at].constructed() || siblings[at].tag == 0x31);
    const bool is_explicit = (parent.tag & 0xC0) == 0x80;
    if ((last || parent.tag == 0x31 || shifts) && !is_explicit) expected.insert(place);
  });
  EXPECT_EQ(accepted_changes(tree, repeat), expected);
}

INSTANTIATE_TEST_SUITE_P(Each, HostileBytes, testing::ValuesIn(kVersions), [](const auto& each) {
  std::string name = each.param;
  std::erase(name, '.');
  return name;
});

}  // namespace
}  // namespace tq::abi
