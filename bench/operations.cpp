#include "operations.h"

#include <tqlabel/label.h>

#include <memory>
#include <stdexcept>

namespace tq::bench {
namespace {

// A label that a codec has decoded, and room for what it encodes.
class Decoded {
 public:
  Decoded(const Codec& codec, const Sample& sample)
      : codec_(codec),
        sample_(sample),
        label_(codec.decode(sample.version, sample.bytes)),
        buffer_(sample.bytes.size()) {
    if (label_ == nullptr) fail("does not decode");
    if (codec.encode != nullptr && (encode() != buffer_.size() || buffer_ != sample.bytes)) {
      fail("does not give back the bytes");
    }
  }
  Decoded(const Decoded&) = delete;
  Decoded& operator=(const Decoded&) = delete;
  ~Decoded() { codec_.release(sample_.version, label_); }

  std::size_t encode() { return codec_.encode(sample_.version, label_, buffer_); }
  [[nodiscard]] void* label() const { return label_; }

 private:
  [[noreturn]] void fail(const char* what) const {
    throw std::runtime_error(sample_.name + ": " + std::string(codec_.name) + " " + what);
  }

  const Codec& codec_;
  const Sample& sample_;
  void* label_;
  std::vector<std::uint8_t> buffer_;
};

void add(std::vector<Operation>& to, const Codec& codec, const Sample& sample) {
  const std::string suffix = "/" + sample.name + "/" + std::string(codec.name);
  const auto decoded = std::make_shared<Decoded>(codec, sample);
  to.push_back({"decode" + suffix, &sample, [&codec, &sample] {
                  codec.release(sample.version, codec.decode(sample.version, sample.bytes));
                }});
  if (codec.encode == nullptr || &codec == &kOwn) return;  // own writes as block does
  to.push_back({"encode" + suffix, &sample, [decoded] { decoded->encode(); }});
  if (&codec != &kTqlabel) return;
  const auto size = [decoded] {
    std::uint32_t length = 0;
    EncodeLabel(static_cast<TqLabel>(decoded->label()), nullptr, &length);
  };
  to.push_back({"size" + suffix, &sample, size});
  to.push_back({"query_and_fill" + suffix, &sample, [size, decoded] {
                  size();
                  decoded->encode();
                }});
}

bool is_scaling(const Sample& sample) { return sample.name.starts_with("logs-"); }

}  // namespace

std::vector<Sample> samples(Extent extent) {
  std::vector<Sample> made = {small_label()};
  for (const Version version : {Version::k111, Version::k112, Version::k60}) {
    made.push_back(typical_label(version));
  }
  made.push_back(label_with_logs(1000));
  if (extent == Extent::kQuick) return made;
  for (const std::uint32_t logs : {100U, 10000U, 100000U}) made.push_back(label_with_logs(logs));
  made.push_back(large_label());
  return made;
}

std::vector<Operation> operations(const std::vector<Sample>& samples, Extent extent) {
  std::vector<Operation> made;
  for (const Sample& sample : samples) {
    add(made, kTqlabel, sample);
    for (const Codec* codec : kFloors) add(made, *codec, sample);
    if (extent == Extent::kQuick || is_scaling(sample)) continue;
    for (const Codec* codec : kGeneral) add(made, *codec, sample);
  }
  return made;
}

}  // namespace tq::bench
