/**
 * @file
 * Labels in C++20: an owner over the C interface of tqlabel/label.h, whose terms hold here, too.
 *
 * - Nothing throws: what can fail gives a Result. Containers allocate as the standard library does,
 *   so that a program without memory for them ends or sees std::bad_alloc.
 * - Bytes are taken as spans and texts as string views; they need not outlive the call. What is
 *   handed out belongs to the caller.
 * - Lengths are checked before a call: an argument that does not fit its field gives
 *   Error::kTooLong and is never cut.
 * - Set the version first. A Label that was moved from refuses every call but assignment.
 */
#ifndef TQLABEL_LABEL_HPP
#define TQLABEL_LABEL_HPP

#include <tqlabel/detail/encoded.hpp>
#include <tqlabel/detail/lists.hpp>

/** @cond cpp */
namespace tqlabel {

/** A label with its owner. */
class Label {
 public:
  /** @name Handles and versions
   * @{ */

  /** An empty label of a version: "6.0", "1.1", "1.1.1" or "1.1.2". */
  static Result<Label> make(std::string_view version) {
    Label label(GetHandleLabel());
    return label.set_version(version).and_then([&]() -> Result<Label> { return std::move(label); });
  }
  /** Takes over a handle of the C interface. */
  explicit Label(TqLabel handle) noexcept : handle_(handle) {}
  /** The handle, for calls of the C interface; it stays this label's. */
  [[nodiscard]] TqLabel handle() const noexcept { return handle_.get(); }
  /** Hands the handle over: FreeHandleLabel() is the caller's from then on. */
  [[nodiscard]] TqLabel release() noexcept { return handle_.release(); }

  /** Sets the version, once. An unknown one is stored, and does not encode. */
  Result<void> set_version(std::string_view version) { return put<128>(GLSetVersion, version); }
  /** The version as it was set or decoded. */
  [[nodiscard]] Result<std::string> version() const { return get<std::string>(GLGetVersion); }

  /** @}
   * @name Encoding and decoding
   * @{ */

  /** Decodes a label whose body is in the clear, with or without padding. */
  static Result<Label> decode(ByteView der) {
    return detail::with(der, [](const std::uint8_t* data, std::uint32_t length) -> Result<Label> {
      TqLabel made = nullptr;
      if (DecodeLabel(data, length, &made) != 0) return Error::kRefused;
      return Label(made);
    });
  }
  /** Decodes the head of a label and hands out its encrypted body: one of less than 128 bytes as
   * empty. Decrypt it and call decode_body(). */
  static Result<std::pair<Label, Bytes>> decode_encrypted(ByteView der) {
    using Parts = std::pair<Label, Bytes>;
    return detail::with(der, [](const std::uint8_t* data, std::uint32_t length) {
      TqLabel made = nullptr;
      return detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* room) {
               return DecodeLabelEncrypted(data, length, buffer, room, &made);
             })
          .and_then(
              [&](Bytes body) -> Result<Parts> { return Parts(Label(made), std::move(body)); });
    });
  }
  /** Decodes a decrypted body in place of the one that the label has. */
  Result<void> decode_body(ByteView der) { return put(DecodeLabelDecrypted, der); }

  /** The label with its body in the clear. */
  [[nodiscard]] Result<Bytes> encode() const { return get<Bytes>(EncodeLabel); }
  /** The same with the padding of set_padding(). */
  [[nodiscard]] Result<Bytes> encode_padded() const { return get<Bytes>(EncodeLabelPad); }
  /** The label around an encrypted body; it is read back from 128 bytes on. */
  [[nodiscard]] Result<Bytes> encode_encrypted(ByteView body) const {
    return encode_around(EncodeLabelEncrypted, body);
  }
  /** The same with the padding of set_padding(). */
  [[nodiscard]] Result<Bytes> encode_padded_encrypted(ByteView body) const {
    return encode_around(EncodeLabelPadEncrypted, body);
  }
  /** The body alone: what is encrypted for encode_encrypted(). */
  [[nodiscard]] Result<Bytes> encode_body() const { return get<Bytes>(EncodeBodyPlaint); }
  /** What the head signature signs; set its certificate and algorithm first. */
  [[nodiscard]] Result<Bytes> signature_message() const { return get<Bytes>(GetSignatureMessage); }

  /** Whether the head names a cipher: the body is to be encrypted. */
  [[nodiscard]] Result<bool> names_cipher() const {
    return detail::answer(LabelBodyNeedEnc(handle()));
  }
  /** Lengths of fields and estimated sizes of lists. */
  [[nodiscard]] Result<LabelSizeInfo> sizes() const {
    LabelSizeInfo sizes = {};
    if (LabCalSize(handle(), &sizes) != 0) return Error::kRefused;
    return sizes;
  }
  /** Sets the number of zeros in the padding. */
  Result<void> set_padding(std::uint32_t size) { return put(SetLabelPadSize, size); }

  /** @}
   * @name Head
   * @{ */

  /** Sets the label text, of 1 to 128 bytes. */
  Result<void> set_text(std::string_view text) { return put<128>(SetLabel, text); }
  /** The label text. */
  [[nodiscard]] Result<std::string> text() const { return get<std::string>(GetLabel); }
  /** Sets the custom bytes; none clear the field. */
  Result<void> set_custom(ByteView bytes) { return put(SetCustom, bytes); }
  /** The custom bytes. */
  [[nodiscard]] Result<Bytes> custom() const { return get<Bytes>(GetCustom); }
  /** Sets the serial number of the certificate that the head is addressed to, to 128 octets. */
  Result<void> set_serial(ByteView serial) { return put<128>(SetHeadSerialNum, serial); }
  /** The serial number of the head. */
  [[nodiscard]] Result<Bytes> serial() const { return get<Bytes>(GetHeadSerialNum); }
  /** Sets serial number and issuer of the certificate that the head is addressed to. */
  Result<void> set_author(const Recipient& author) {
    if (author.serial.size() > 128) return Error::kTooLong;
    return detail::with(author, [&](auto... who) {
      return detail::status(SetCertSerialAndIssuerToHead(handle(), who...));
    });
  }
  /** Serial number and issuer of the head. */
  [[nodiscard]] Result<Recipient> author() const {
    Recipient author;
    return detail::fetch<Bytes, std::uint8_t>([&](std::uint8_t* buffer, std::uint8_t* length) {
             PJCertIssuer* made = nullptr;
             const std::int32_t code =
                 GetCertSerialAndIssuerToHead(handle(), buffer, length, &made);
             author.issuer = detail::issuer_of(Owned<PJCertIssuer>(made).get());
             return code;
           })
        .and_then([&](Bytes serial) -> Result<Recipient> {
          author.serial = std::move(serial);
          return std::move(author);
        });
  }
  /** Sets the creation time of the label to the present. */
  Result<void> set_created_now() { return detail::status(SetHeadCreateTime(handle())); }
  /** The creation time of the label. */
  [[nodiscard]] Result<Seconds> created() const { return get(GetHeadCreateTime); }
  /** Sets the modification time of the label. */
  Result<void> set_modified(Seconds time) { return put(SetHeadModifyTime, time); }
  /** The modification time of the label. */
  [[nodiscard]] Result<Seconds> modified() const { return get(GetHeadModifyTime); }
  /** Sets the cipher of the body: a label that has one counts as encrypted. */
  Result<void> set_cipher(std::string_view name, std::uint8_t feedback_bits = 0) {
    return detail::with<std::uint8_t>(
        as_octets(name), [&](const std::uint8_t* data, std::uint32_t length) {
          return detail::status(SetEncryptHead(handle(), data, length, feedback_bits));
        });
  }
  /** The cipher of the body; its name is empty where there is none. */
  [[nodiscard]] Result<Cipher> cipher() const {
    std::uint8_t bits = 0;
    return detail::fetch<std::string, std::uint8_t>(
               [&](std::uint8_t* buffer, std::uint8_t* length) {
                 return GetEncryptHead(handle(), buffer, length, &bits);
               })
        .and_then([&](std::string name) {
          return Result<Cipher>({std::move(name), bits});
        });
  }

  /** @}
   * @name Signatures
   * @{ */

  /** Sets the algorithm of the head signature, by name. */
  Result<void> set_sign_algorithm(std::string_view name) { return put(SetHeadSignAlg, name); }
  /** The algorithm of the head signature. */
  [[nodiscard]] Result<std::string> sign_algorithm() const {
    return get<std::string>(GetHeadSignAlg);
  }
  /** Sets the certificate of the head's signer. */
  Result<void> set_head_certificate(ByteView der) { return put(SetHeadSignCert, der); }
  /** The certificate of the head's signer. */
  [[nodiscard]] Result<Bytes> head_certificate() const { return get<Bytes>(GetHeadSignCert); }
  /** Sets the value of the head signature: signature_message() signed. */
  Result<void> set_head_signature(ByteView value) { return put(SetHeadSignValue, value); }
  /** The value of the head signature. */
  [[nodiscard]] Result<Bytes> head_signature() const { return get<Bytes>(GetHeadSignValue); }
  /** Sets the certificate of the body's signer, which every version but "1.1.2" needs. */
  Result<void> set_body_certificate(ByteView der) { return put(SetBodySignCert, der); }
  /** The certificate of the body's signer. */
  [[nodiscard]] Result<Bytes> body_certificate() const { return get<Bytes>(GetBodySignCert); }
  /** Sets the value of the body signature, of a multiple of 32 bytes. */
  Result<void> set_body_signature(ByteView value) { return put(SetBodySigVal, value); }
  /** The value of the body signature. */
  [[nodiscard]] Result<Bytes> body_signature() const { return get<Bytes>(GetBodySigVal); }

  /** "1.1.2": replaces all body signatures by one. Other versions: see SetBodySignAttr(). */
  Result<void> set_signature(const Signature& signature) { return sign(0, signature); }
  /** "1.1.2": adds a body signature behind the others. Other versions: as set_signature(). */
  Result<void> add_signature(const Signature& signature) { return sign(1, signature); }
  /** The first body signature, with its own algorithm. */
  [[nodiscard]] Result<Signature> signature() const {
    return walk_signatures([&](SignEnum* at) -> Result<Signature> {
      SignAttribute info = {};
      if (GetNextSign(at, &info) != 0) return Error::kRefused;
      return take_signature(info, [&] { return GetBodySignAttr(handle(), &info); });
    });
  }
  /** All body signatures, first to last, each with the algorithm of the head signature, which must
   * be set in the "1.1" family. */
  [[nodiscard]] Result<std::vector<Signature>> signatures() const {
    return walk_signatures([](SignEnum* at) -> Result<std::vector<Signature>> {
      std::vector<Signature> all;
      for (;;) {
        SignAttribute info = {};
        const std::int32_t code = GetNextSign(at, &info);
        if (code == 1) return all;
        if (code != 0) return Error::kRefused;
        Result<Signature> next = take_signature(info, [&] { return GetNextSign(at, &info); });
        if (!next) return next.error();
        all.push_back(std::move(*next));
      }
    });
  }
  /** What a signer of a "1.1.2" body signs: all signatures before that of the certificate, or all
   * there are where it is not among them. */
  [[nodiscard]] Result<Bytes> signer_message(ByteView certificate = {}) const {
    return detail::with(certificate, [&](const std::uint8_t*, std::uint32_t length) {
      return detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* room) {
        std::uint8_t* const cert = length == 0 ? nullptr : detail::given(certificate);
        MultiSignData request = {cert, length, buffer, *room};
        const std::int32_t code = GetMultiSignData(handle(), &request);
        *room = request.dataLen;
        return code;
      });
    });
  }
  /** Stores a signature that is encoded already; Error::kNothing where FileHaveSigned() gives 1. */
  Result<void> set_encoded_signature(ByteView der) { return put(FileHaveSigned, der); }

  /** @}
   * @name Content and file
   * @{ */

  /** Sets all content fields, once: refused where the label has a file name or title. */
  Result<void> set_content(const Content& content) {
    using detail::fits;
    if (!fits<std::uint32_t>(content.file_name.size() | content.file_title.size())) {
      return Error::kTooLong;
    }
    const ContentAttrInfo info = {content.file_type,
                                  content.secrecy,
                                  content.file_size,
                                  detail::given(as_octets(content.file_name)),
                                  detail::size32(content.file_name),
                                  detail::given(as_octets(content.file_title)),
                                  detail::size32(content.file_title),
                                  content.modified,
                                  content.expiry,
                                  content.abolition,
                                  content.destruction};
    return detail::status(SetContentAtrr(handle(), &info));
  }
  /** All content fields. */
  [[nodiscard]] Result<Content> content() const {
    return text_room().and_then([&](std::uint32_t size) -> Result<Content> {
      Bytes name(size);
      Bytes title(size);
      ContentAttrInfo info = {};
      info.fileName = name.data();
      info.fileTitle = title.data();
      if (GetContentAtrr(handle(), &info) != 0) return Error::kRefused;
      return Content{info.fileType,
                     info.secrecy,
                     info.fileSize,
                     detail::text_of(info.fileName, info.fileNameLen),
                     detail::text_of(info.fileTitle, info.fileTitleLen),
                     info.modifyTime,
                     info.expiryTime,
                     info.abolishTime,
                     info.destroyTime};
    });
  }
  /** Sets the file type, the caller's own number. */
  Result<void> set_file_type(std::uint32_t type) { return put(GLSetFileType, type); }
  /** The file type. */
  [[nodiscard]] Result<std::uint32_t> file_type() const { return get(GLGetFileType); }
  /** Sets the secrecy level, the caller's own number. */
  Result<void> set_secrecy(std::uint32_t level) { return put(SetFileSecc, level); }
  /** The secrecy level. */
  [[nodiscard]] Result<std::uint32_t> secrecy() const { return get(GetFileSecc); }
  /** Sets the file size, in the caller's unit. */
  Result<void> set_file_size(std::uint32_t size) { return put(GLSetFileSize, size); }
  /** The file size. */
  [[nodiscard]] Result<std::uint32_t> file_size() const { return get(GLGetFileSize); }
  /** Sets the file name, to 255 bytes. */
  Result<void> set_file_name(std::string_view name) { return put<255>(SetFileName, name); }
  /** The file name. */
  [[nodiscard]] Result<std::string> file_name() const { return get<std::string>(GetFileName); }
  /** Sets the file title, to 255 bytes. */
  Result<void> set_file_title(std::string_view title) { return put<255>(GLSetFileTitle, title); }
  /** The file title. */
  [[nodiscard]] Result<std::string> file_title() const { return get<std::string>(GLGetFileTitle); }
  /** Sets the modification time of the file. */
  Result<void> set_file_modified(Seconds time) { return put(SetModifyTime, time); }
  /** The modification time of the file. */
  [[nodiscard]] Result<Seconds> file_modified() const { return get(GetModifyTime); }

  /** Sets the file creator record; an empty text leaves the stored one. */
  Result<void> set_file_creator(const FileCreator& creator) {
    if (!detail::fits<std::uint32_t>(creator.file_number.size() | creator.text.size())) {
      return Error::kTooLong;
    }
    const FileCreatorInfo info = {
        detail::given(as_octets(creator.file_number)), detail::size32(creator.file_number),
        detail::given(as_octets(creator.text)), detail::size32(creator.text), creator.time};
    return detail::status(SetBodyFileCreator(handle(), &info));
  }
  /** The file creator record; the file number has the terminating zero that is stored with it. */
  [[nodiscard]] Result<FileCreator> file_creator() const {
    return text_room().and_then([&](std::uint32_t size) -> Result<FileCreator> {
      Bytes number(size);
      Bytes text(size);
      FileCreatorInfo info = {number.data(), size, text.data(), size, 0};
      if (GetFileIdentify(handle(), &info) != 0) return Error::kRefused;
      return FileCreator{detail::text_of(info.str1, info.str1Len),
                         detail::text_of(info.str2, info.str2Len), info.time};
    });
  }
  /** Sets the file number, up to its first zero byte. */
  Result<void> set_file_number(const std::string& number) {
    return detail::status(GLSetFileNo(handle(), number.c_str()));
  }
  /** The file number, up to its first zero byte. */
  [[nodiscard]] Result<std::string> file_number() const {
    return file_creator().and_then([](const FileCreator& creator) -> Result<std::string> {
      return std::string(creator.file_number.c_str());
    });
  }
  /** Sets the size to which the file is aligned; "1.1.1" and "1.1.2" have one. */
  Result<void> set_file_align(std::uint32_t size) { return put(SetFileAlignSize, size); }
  /** The size to which the file is aligned. */
  [[nodiscard]] Result<std::uint32_t> file_align() const { return get(GetFileAlignSize); }
  /** Sets the size of the part of the file that does not count. */
  Result<void> set_uneffective(std::uint32_t size) { return put(SetFileUnEffectSize, size); }
  /** The size of the part of the file that does not count. */
  [[nodiscard]] Result<std::uint32_t> uneffective() const { return get(GetFileUnEffectSize); }
  /** Sets the size to which the label is aligned. */
  Result<void> set_label_align(std::uint32_t size) { return put(SetLabelAlignSize, size); }
  /** The size to which the label is aligned. */
  [[nodiscard]] Result<std::uint32_t> label_align() const { return get(GetLabelAlignSize); }

  /** @}
   * @name Dates
   * @{ */

  /** Sets the expiry time; 0 is never. */
  Result<void> set_expiry(Seconds time) { return put(SetExpired, time); }
  /** The expiry time. */
  [[nodiscard]] Result<Seconds> expiry() const { return get(GetExpired); }
  /** Sets the destruction time; 0 is never. */
  Result<void> set_destruction(Seconds time) { return put(SetDestroyTime, time); }
  /** The destruction time. */
  [[nodiscard]] Result<Seconds> destruction() const { return get(GetDestroyTime); }
  /** Abolishes the file at once. */
  Result<void> abolish() { return detail::status(AbolishSF(handle())); }
  /** The abolition time. */
  [[nodiscard]] Result<Seconds> abolition() const { return get(GetAbolishTime); }
  /** Whether the file is neither expired nor abolished. */
  [[nodiscard]] bool is_valid() const { return CheckLabelDate(handle()) == 0; }
  /** Whether the file is abolished; true for a label that was moved from. */
  [[nodiscard]] bool is_abolished() const { return CheckAbolishDate(handle()) != 0; }
  /** Whether the file is to be destroyed; true for a label that was moved from. */
  [[nodiscard]] bool is_to_be_destroyed() const { return CheckDestroyDate(handle()) != 0; }

  /** @}
   * @name Recipients, of the "1.1" family only
   * @{ */

  /** Adds an envelope to the head, in place of an earlier one of the recipient. */
  Result<void> add_to_head(const Envelope& envelope) {
    return detail::with(envelope, [&](const EnvelopeInfo& info) {
      return detail::status(AddEnvelopeToHead(handle(), &info));
    });
  }
  /** Adds an envelope with privileges to the body, in place of an earlier one of the recipient. */
  Result<void> add_to_body(const Envelope& envelope, const Privileges& privileges) {
    return detail::with(envelope, [&](const EnvelopeInfo& info) {
      return detail::with(privileges, [&](const PrivilegeInfo& rights) {
        return detail::status(ADDigitEnvlopeToBody(handle(), &info, &rights));
      });
    });
  }
  /** The recipients of the body, newest first. The range has a copy of the encoded body, which must
   * encode, and is independent of the label. */
  [[nodiscard]] Result<Recipients> recipients() const {
    return version().and_then([&](const std::string& text) {
      return encode_body().and_then([&](const Bytes& body) {
        return detail::RecipientSource::make(as_octets(text), body)
            .and_then([](detail::RecipientSource source) -> Result<Recipients> {
              return Recipients(std::move(source));
            });
      });
    });
  }
  /** Whether a recipient has an envelope in the head. */
  [[nodiscard]] Result<bool> in_head(const Recipient& to) const {
    return has(HaveTheEnvelopeFromHEnv, to);
  }
  /** Whether a recipient has an envelope in the body. */
  [[nodiscard]] Result<bool> in_body(const Recipient& to) const {
    return has(HaveTheEnvelopeFromBEnv, to);
  }
  /** A recipient's envelope in the head: algorithm and key, with @p to as it was given. */
  [[nodiscard]] Result<Envelope> head_envelope(const Recipient& to) const {
    return detail::with(to, [&](const std::uint8_t*, std::uint32_t length, PJCertIssuer* issuer) {
      EnvelopeInfo info = {};
      info.serial = detail::given(to.serial);
      info.serialLen = static_cast<std::uint8_t>(length);
      info.issuer = issuer;
      return take_head_envelope(info, to);
    });
  }
  /** A recipient's envelope in the body with the stored name; the body must encode.
   * Error::kNothing where the body has no envelopes. */
  [[nodiscard]] Result<BodyEnvelope> body_envelope(const Recipient& to) const {
    return detail::with(to, [&](const std::uint8_t*, std::uint32_t length, PJCertIssuer*) {
      return encode_body().and_then([&](const Bytes& body) {
        return detail::read_envelope(detail::size32(body), to, [&](detail::EnvelopeRoom& room) {
          room.envelope.serialLen = static_cast<std::uint8_t>(length);
          return GetEnvelopeFromBody(handle(), &room.envelope, &room.privilege);
        });
      });
    });
  }
  /** The privilege data of a recipient in the body: the certificate. */
  [[nodiscard]] Result<Bytes> certificate(const Recipient& to) const {
    if (handle() == nullptr) return Error::kRefused;  // the library takes it for success
    return detail::with(to, [&](auto... who) {
      return detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* length) {
        return GetCertByIssuerAndSerial(handle(), who..., buffer, length);
      });
    });
  }
  /** Stores how often a recipient has read the file. */
  Result<void> set_read_count(const Recipient& of, std::uint32_t count) {
    return detail::with(of, [&](auto... who) {
      return detail::status(SetAlreadyReadCountsToLabel(handle(), who..., count));
    });
  }
  /** Removes a recipient from head and body. */
  Result<void> remove(const Recipient& recipient) {
    return detail::with(recipient, [&](auto... who) {
      return detail::status(DelPrivilegeFromLabel(handle(), who...));
    });
  }
  /** Gives each recipient of the body a new key and an envelope in the head, oldest first. @p wrap
   * takes a ByteView of the privilege data and gives a Result<WrappedKeys>. The lists are reversed;
   * a failure leaves the label half done. */
  template <class Wrap>
  Result<void> rekey(Wrap wrap) {
    DigitEnvolopEnum* made = nullptr;
    if (CreatEmurateDigitEnvolop(&made, handle()) != 0) return Error::kRefused;
    const Owned<DigitEnvolopEnum> owner(made);
    do {
      Result<void> done =
          detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* length) {
            return GetCurrentDigitEnvolop(made, buffer, length);
          })
              .and_then(
                  [&](const Bytes& data) -> Result<WrappedKeys> { return wrap(ByteView(data)); })
              .and_then([&](const WrappedKeys& keys) { return set_keys(made, keys); });
      if (!done) return done;
    } while (HaveNextDigitEnvolop(made) == 0);
    return {};
  }

  /** @}
   * @name Markings: the records of the C interface, owned
   * @{ */

  /** Sets the watermark. */
  Result<void> set_watermark(const WaterMark& mark) {
    return detail::status(SetWaterMarkInfo(handle(), &mark));
  }
  /** A copy of the watermark. It is released with Asn1Free(): link libtqasn1. */
  [[nodiscard]] Result<Owned<WaterMark>> watermark() const { return marking(GetWaterMarkInfo); }
  /** Sets the stamp. */
  Result<void> set_stamp(const StampRecord& stamp) {
    return detail::status(SetStampInfo(handle(), &stamp));
  }
  /** A copy of the stamp. */
  [[nodiscard]] Result<Owned<StampRecord>> stamp() const { return marking(GetStampInfo); }
  /** Sets the fingerprint record; its list is stored in reverse order. */
  Result<void> set_fingerprints(const Finger& finger) {
    return detail::status(SetFingerPrintInfo(handle(), &finger));
  }
  /** A copy of the fingerprint record. */
  [[nodiscard]] Result<Owned<Finger>> fingerprints() const { return marking(GetFingerPrintInfo); }

  /** @}
   * @name Logs and extensions
   * @{ */

  /** Adds a log entry at the front. */
  Result<void> add_log(const Log& log) {
    using detail::fits;
    detail::FlatIssuer issuer(log.issuer);
    if (!issuer.fits() || !fits<std::uint8_t>(log.text1.size() | log.array1.size()) ||
        !fits<std::uint8_t>(log.array2.size()) || !fits<std::uint32_t>(log.text2.size())) {
      return Error::kTooLong;
    }
    const LogInfo info = {log.number,
                          detail::given(as_octets(log.text1)),
                          detail::size32(log.text1),
                          issuer.get(),
                          detail::given(log.array1),
                          detail::size32(log.array1),
                          detail::given(log.array2),
                          detail::size32(log.array2),
                          log.time,
                          log.value,
                          detail::given(as_octets(log.text2)),
                          detail::size32(log.text2)};
    return detail::status(AddLog(handle(), &info));
  }
  /** The log entries, newest first. */
  [[nodiscard]] Logs logs() const { return Logs({handle(), count(GetLogCout)}); }
  /** Removes the log entry at a position. The newest, 0, is refused: the library removes it only
   * with all others. */
  Result<void> remove_log(std::uint32_t position) {
    const bool there = position != 0 && position < count(GetLogCout);
    if (!there || !detail::fits<std::int32_t>(position)) return Error::kRefused;
    DelLog(handle(), static_cast<std::int32_t>(position));  // its answer is the same for all
    return {};
  }
  /** Removes all log entries. */
  Result<void> clear_logs() { return detail::status(DelAlLog(handle())); }

  /** Adds an extension value at the front; earlier ones of its type stay behind it. */
  Result<void> add_extension(std::uint32_t type, ByteView value) {
    return detail::with(value, [&](const std::uint8_t* data, std::uint32_t length) {
      return detail::status(AddExtendValue(handle(), type, data, length));
    });
  }
  /** The newest extension value of a type. */
  [[nodiscard]] Result<Bytes> extension(std::uint32_t type) const {
    return detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* length) {
      return GetExtendValue(handle(), type, buffer, length);
    });
  }
  /** The extension values, newest first. */
  [[nodiscard]] Extensions extensions() const {
    return Extensions({handle(), count(GetExtendCount)});
  }
  /** Removes the newest extension value of a type below 65536. */
  Result<void> remove_extension(std::uint16_t type) {
    return put(DelExtendAttr, std::uint32_t{type});
  }

  /** @} */

 private:
  template <std::size_t kMost = std::numeric_limits<std::uint32_t>::max()>
  Result<void> put(std::int32_t (*set)(TqLabel, const std::uint8_t*, std::uint32_t),
                   ByteView bytes) {
    if (bytes.size() > kMost) return Error::kTooLong;
    return detail::status(set(handle(), detail::octets(bytes), detail::size32(bytes)));
  }
  template <std::size_t kMost = std::numeric_limits<std::uint32_t>::max()>
  Result<void> put(std::int32_t (*set)(TqLabel, const std::uint8_t*, std::uint32_t),
                   std::string_view text) {
    return put<kMost>(set, as_octets(text));
  }
  template <class T>
  Result<void> put(std::int32_t (*set)(TqLabel, T), T value) {
    return detail::status(set(handle(), value));
  }
  template <class Out, class Length>
  Result<Out> get(std::int32_t (*getter)(TqLabel, std::uint8_t*, Length*)) const {
    return detail::fetch<Out, Length>(
        [&](std::uint8_t* buffer, Length* length) { return getter(handle(), buffer, length); });
  }
  template <class T>
  Result<T> get(std::int32_t (*getter)(TqLabel, T*)) const {
    T value = 0;
    if (getter(handle(), &value) != 0) return Error::kRefused;
    return value;
  }
  template <class Record>
  Result<Owned<Record>> marking(std::int32_t (*getter)(TqLabel, Record**)) const {
    Record* made = nullptr;
    if (getter(handle(), &made) != 0) return Error::kRefused;
    return Owned<Record>(made);
  }
  [[nodiscard]] std::uint32_t count(std::int32_t (*counter)(TqLabel, std::uint32_t*)) const {
    return get(counter).value_or(0);
  }

  template <class Encode>
  Result<Bytes> encode_around(Encode how, ByteView body) const {
    return detail::with(body, [&](const std::uint8_t* data, std::uint32_t length) {
      return detail::fetch<Bytes>([&](std::uint8_t* buffer, std::uint32_t* room) {
        return how(handle(), data, length, buffer, room);
      });
    });
  }
  // Room for any text of the body. The library estimates no sizes for more than 100 envelopes.
  [[nodiscard]] Result<std::uint32_t> text_room() const {
    if (const Result<LabelSizeInfo> of = sizes()) {
      return 1 + std::max({of->fileNameLen, of->fileTitleLen, of->fileNoLen, of->creatorStr2Len});
    }
    std::uint32_t body = 0;
    if (EncodeBodyPlaint(handle(), nullptr, &body) != 0) return Error::kRefused;
    return body;
  }

  Result<void> sign(std::int32_t append, const Signature& from) {
    if (!detail::fits<std::uint32_t>(from.value.size() | from.certificate.size())) {
      return Error::kTooLong;
    }
    std::string name = from.algorithm;
    const SignAttribute info = {name.data(), detail::given(from.value), detail::size32(from.value),
                                detail::given(from.certificate), detail::size32(from.certificate)};
    return detail::status(SetBodySignAttr(handle(), append, &info));
  }
  template <class Use>
  auto walk_signatures(Use use) const -> std::invoke_result_t<Use, SignEnum*> {
    SignEnum* made = nullptr;
    if (CreateEmurateSign(handle(), &made) != 0) return Error::kRefused;
    const Owned<SignEnum> owner(made);
    return use(made);
  }
  // Calls with room for the lengths that a size query has stored, and for any name.
  template <class Call>
  static Result<Signature> take_signature(SignAttribute& info, Call call) {
    char name[64] = {};
    Bytes value(std::size_t{info.valueLen} + 1);
    Bytes cert(std::size_t{info.certLen} + 1);
    info = {name, value.data(), info.valueLen, cert.data(), info.certLen};
    if (const std::int32_t code = call(); code != 0) return static_cast<Error>(code);
    value.resize(info.valueLen);
    cert.resize(info.certLen);
    return Signature{info.algName, std::move(value), std::move(cert)};
  }

  Result<bool> has(std::int32_t (*find)(TqLabel, const std::uint8_t*, std::uint32_t,
                                        const PJCertIssuer*, void**),
                   const Recipient& recipient) const {
    return detail::with(recipient, [&](auto... who) {
      void* previous = nullptr;
      return detail::answer(find(handle(), who..., &previous));
    });
  }
  Result<Envelope> take_head_envelope(EnvelopeInfo& info, const Recipient& to) const {
    if (GetEnvelopeFromHead(handle(), &info) != 0) return Error::kRefused;
    Bytes algorithm(info.algLen);
    Bytes key(std::size_t{info.keyLen} + 1);
    info.alg = algorithm.data();
    info.key = key.data();
    if (GetEnvelopeFromHead(handle(), &info) != 0) return Error::kRefused;
    key.resize(info.keyLen);
    return Envelope{to, detail::text_of(info.alg, info.algLen), std::move(key)};
  }
  static Result<void> set_keys(DigitEnvolopEnum* at, const WrappedKeys& keys) {
    if (!detail::fits<std::uint32_t>(keys.head.size() | keys.body.size())) return Error::kTooLong;
    return detail::status(SetCurrentEmuEnvolop(at, detail::octets(keys.head),
                                               detail::size32(keys.head), detail::octets(keys.body),
                                               detail::size32(keys.body)));
  }

  Owned<TqLabelHandle> handle_;
};

}  // namespace tqlabel
/** @endcond */

#endif
