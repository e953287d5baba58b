/* Needs libtqlabel alone. */
#include <string.h>
#include <tqlabel/label.h>

int main(void) {
  uint8_t text[8] = {0};
  uint8_t length = sizeof text;
  TqLabel label = GetHandleLabel();
  int good = label != NULL && GLSetVersion(label, (const uint8_t*)"1.1.2", 5) == 0 &&
             GLGetVersion(label, text, &length) == 0 && length == 5 &&
             memcmp(text, "1.1.2", 5) == 0;
  FreeHandleLabel(label);
  return good ? 0 : 1;
}
