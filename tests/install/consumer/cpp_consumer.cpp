// Calls both libraries.
#include <tqasn1/asn1.h>
#include <tqlabel/label.h>

#include <memory>

int main() {
  const std::unique_ptr<TqLabelHandle, decltype(&FreeHandleLabel)> label{GetHandleLabel(),
                                                                         FreeHandleLabel};
  const std::unique_ptr<void, decltype(&Asn1Free)> block{Asn1Malloc(16), Asn1Free};
  return label && block ? 0 : 1;
}
