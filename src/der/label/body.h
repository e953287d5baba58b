#ifndef TQ_DER_LABEL_BODY_H
#define TQ_DER_LABEL_BODY_H

// The body of a label, in three layouts: "6.0"; "1.1" and "1.1.1"; "1.1.2".

#include "crypto/envelopes.h"
#include "crypto/signatures.h"
#include "der/label/log.h"
#include "der/records/extend.h"
#include "der/records/fingerprint.h"
#include "der/records/marking.h"

namespace tq {

// Stamp, watermark and fingerprints. In "1.1.2" each has a tag, may be missing and is read in
// whatever order it comes; a second one of a kind replaces the first.
struct Markings
    : decltype(run(ready<Part::kStampNode>(nested<&Body::stamp, kStamp>),
                   ready<Part::kWaterMarkNode>(nested<&Body::waterMark, kWaterMark>),
                   ready<Part::kFingerPrintNode>(nested<&Body::fingerPrint, kFingerPrint>))) {
  [[nodiscard]] static bool read(Body& body, const Scope& scope, der::Cursor& in);
};

// Extension values and logs. "6.0" has both; "1.1" tags them and leaves out the empty ones.
struct Tail : decltype(run(ready<Part::kExtendsNode>(nested<&Body::extends, kExtends>),
                           ready<Part::kLogsNode>(nested<&Body::logs, kLogs>))) {
  [[nodiscard]] static bool read(Body& body, const Scope& scope, der::Cursor& in);
};

inline constexpr auto kBody =
    record(either<in_multi_sign>(
               nested<&Body::multiSign, kMultiSign>,
               run(bits<&Body::bodySignValue>, raw_lenient<&Body::bodySignCert, is_sequence>)),
           ready<Part::kBodyEnvelopesNode>(nested<&Body::bodyEnvelopes, kBodyEnvelopes>),
           Markings{}, ready<Part::kFileCreatorNode>(nested<&Body::fileCreator, kFileCreator>),
           ready<Part::kContentNode>(nested<&Body::content, kContent>),
           when<is_aligned>(nested<&Body::align, kFileAlign>), Tail{});

// Parts that come encoded. The first three are required.
struct BodyParts {
  const ANYBUF* envelopes;
  const ANYBUF* file_creator;
  const ANYBUF* content;
  const ANYBUF* extends;
  const ANYBUF* logs;
  const ANYBUF* stamp;
  const ANYBUF* water_mark;
  const ANYBUF* finger_print;
};

std::int32_t EncodeBody(const TqLabelHandle* label, const Body* body, const BodyParts& parts,
                        ANYBUF** slot);
std::int32_t DecodeBody(const ANYBUF* element, Body* body, const TqLabelHandle* label);

// The body of a label.
std::int32_t EncodeBodyD(const TqLabelHandle* label, ANYBUF** slot);

// Releases what the body owns; null is accepted.
void FreeBody(Body* body);

}  // namespace tq

#endif
