/**
 * @file
 * The lists of a label as ranges that leave it as it is.
 */
#ifndef TQLABEL_DETAIL_LISTS_HPP
#define TQLABEL_DETAIL_LISTS_HPP

#include <iterator>
#include <tqlabel/detail/calls.hpp>

/** @cond cpp */
namespace tqlabel {

/**
 * A forward range, newest entry first, of results: each entry is read when it is looked at. The
 * label must neither be changed nor released meanwhile, unless the list says otherwise; what has
 * been read is the caller's own.
 */
template <class Source>
class List : private Source {
 public:
  /** Walks a List, which must outlive it. */
  class iterator {
   public:
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = decltype(std::declval<const Source&>().at(0));
    using reference = value_type;
    using pointer = void;

    iterator() = default;
    iterator(const Source* source, std::uint32_t position) : source_(source), position_(position) {}
    reference operator*() const { return source_->at(position_); }
    iterator& operator++() {
      ++position_;
      return *this;
    }
    iterator operator++(int) {
      iterator before = *this;
      ++position_;
      return before;
    }
    bool operator==(const iterator&) const = default;

   private:
    const Source* source_ = nullptr;
    std::uint32_t position_ = 0;
  };

  /** For the functions of Label. */
  explicit List(Source source) : Source(std::move(source)) {}
  /** At the newest entry. */
  [[nodiscard]] iterator begin() const { return {this, 0}; }
  /** Behind the oldest entry. */
  [[nodiscard]] iterator end() const { return {this, this->count}; }
  /** The number of entries. */
  [[nodiscard]] std::uint32_t size() const noexcept { return this->count; }
  /** Whether there are none. */
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
};

namespace detail {

struct LogSource {
  [[nodiscard]] Result<Log> at(std::uint32_t position) const {
    LogInfo* made = nullptr;
    if (GetLog(label, position, &made) != 0) return Error::kRefused;
    const Owned<LogInfo> log(made);
    return Log{log->number,
               text_of(log->text1, log->text1Len),
               issuer_of(log->issuer),
               {log->array1, log->array1 + log->array1Len},
               {log->array2, log->array2 + log->array2Len},
               log->time,
               log->value,
               text_of(log->text2, log->text2Len)};
  }

  TqLabel label;
  std::uint32_t count;
};

struct ExtensionSource {
  [[nodiscard]] Result<Extension> at(std::uint32_t position) const {
    Extension extension;
    return fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* length) {
             return GetExtend(label, position, &extension.type, buffer, length);
           })
        .and_then([&](Bytes value) -> Result<Extension> {
          extension.value = std::move(value);
          return std::move(extension);
        });
  }

  TqLabel label;
  std::uint32_t count;
};

// Room for one envelope of a body, addressed to a recipient or for what comes.
struct EnvelopeRoom {
  EnvelopeRoom(std::uint32_t size, const Recipient& to)
      : key(size), data(size), pairs(size / sizeof(PrivilegeEntry) + 1), issuer(to.issuer) {
    std::ranges::copy(to.serial, serial);
    envelope = {algorithm, sizeof algorithm, serial, static_cast<std::uint8_t>(255), key.data(),
                size,      issuer.get()};
    privilege.data = data.data();
    privilege.dataLen = size;
    privilege.entries = pairs.data();
    privilege.entryCount = size32(pairs);
  }

  [[nodiscard]] BodyEnvelope taken() const {
    BodyEnvelope out;
    out.envelope = {{{serial, serial + envelope.serialLen}, issuer_of(envelope.issuer)},
                    text_of(algorithm, envelope.algLen),
                    {envelope.key, envelope.key + envelope.keyLen}};
    copy_values(privilege, out.privileges);
    out.privileges.read_count = privilege.readCount;
    out.privileges.data.assign(privilege.data, privilege.data + privilege.dataLen);
    for (std::uint32_t i = 0; i < privilege.entryCount; ++i) {
      out.privileges.pairs.push_back({pairs[i].type, pairs[i].value});
    }
    return out;
  }

  std::uint8_t algorithm[255] = {};
  std::uint8_t serial[255] = {};
  Bytes key;
  Bytes data;
  std::vector<PrivilegeEntry> pairs;
  FlatIssuer issuer;
  EnvelopeInfo envelope = {};
  PrivilegeInfo privilege = {};
};

// The library does not tell how much room an envelope takes, and not why a call has failed. The
// whole body holds any of them, but few need so much.
template <class Get>
Result<BodyEnvelope> read_envelope(std::uint32_t limit, const Recipient& to, Get get) {
  for (std::uint32_t size = std::min(limit, 4096U);; size = size > limit / 16 ? limit : size * 16) {
    EnvelopeRoom room(size, to);
    const std::int32_t code = get(room);
    if (code == 0) return room.taken();
    if (code > 0 || size == limit) return static_cast<Error>(code);
  }
}

// The library hands out all envelopes by position but the last, and reverses their order for those
// who re-key. So this reads from a copy of the body that has one more, which is last there.
struct RecipientSource {
  static Result<RecipientSource> make(ByteView version, ByteView body) {
    RecipientSource source{Owned<TqLabelHandle>(GetHandleLabel()), 0, size32(body)};
    const TqLabel copy = source.body.get();
    if (GLSetVersion(copy, octets(version), size32(version)) != 0 ||
        DecodeLabelDecrypted(copy, octets(body), size32(body)) != 0 ||
        GetDigitEnvlopeCountFromBody(copy, &source.count) != 0 ||
        (source.count != 0 && !source.turn())) {
      return Error::kRefused;
    }
    return source;
  }

  [[nodiscard]] Result<BodyEnvelope> at(std::uint32_t position) const {
    const auto index = static_cast<std::int32_t>(count - 1 - position);
    return read_envelope(limit, {}, [&](EnvelopeRoom& room) {
      return GetDigitEnvlope(body.get(), index, &room.envelope, &room.privilege);
    });
  }

  // Adds an envelope at the front, unless somebody has that name, and turns the list.
  [[nodiscard]] bool turn() const {
    const Envelope nobody = {{{0}, {{{0}, "", StringType::kPrintable}}}, "RSA", {0}};
    const Result<void> added = with(nobody, [&](const EnvelopeInfo& envelope) {
      const PrivilegeInfo none = {};
      return status(ADDigitEnvlopeToBody(body.get(), &envelope, &none));
    });
    std::uint32_t now = 0;
    DigitEnvolopEnum* made = nullptr;
    if (!added || GetDigitEnvlopeCountFromBody(body.get(), &now) != 0 || now != count + 1 ||
        CreatEmurateDigitEnvolop(&made, body.get()) != 0) {
      return false;
    }
    Release()(made);
    return true;
  }

  Owned<TqLabelHandle> body;
  std::uint32_t count;
  std::uint32_t limit;
};

}  // namespace detail

/** The log entries of a label. */
using Logs = List<detail::LogSource>;
/** The extension values of a label. */
using Extensions = List<detail::ExtensionSource>;
/** The envelopes of a body; independent of the label that they were read from. */
using Recipients = List<detail::RecipientSource>;

}  // namespace tqlabel
/** @endcond */

#endif
