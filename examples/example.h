/* What the examples share: bytes, files, and the two calls that hand bytes out. */
#ifndef TQLABEL_EXAMPLES_EXAMPLE_H
#define TQLABEL_EXAMPLES_EXAMPLE_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tqlabel/label.h>

typedef struct {
  uint8_t* data;
  uint32_t length;
} Bytes;

static inline void need(int holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "failed: %s\n", what);
  exit(EXIT_FAILURE);
}

static inline Bytes allocate(uint32_t length) {
  Bytes bytes = {malloc(length == 0 ? 1 : length), length};
  need(bytes.data != NULL, "out of memory");
  return bytes;
}

static inline Bytes read_file(const char* path) {
  FILE* file = fopen(path, "rb");
  need(file != NULL && fseek(file, 0, SEEK_END) == 0, path);
  const long size = ftell(file);
  need(size >= 0 && size <= INT32_MAX, path);
  rewind(file);
  Bytes bytes = allocate((uint32_t)size);
  need(fread(bytes.data, 1, bytes.length, file) == bytes.length && fclose(file) == 0, path);
  return bytes;
}

static inline void write_file(const char* path, Bytes bytes) {
  FILE* file = fopen(path, "wb");
  need(file != NULL && fwrite(bytes.data, 1, bytes.length, file) == bytes.length, path);
  need(fclose(file) == 0, path);
}

static inline int equal(Bytes a, Bytes b) {
  return a.length == b.length && memcmp(a.data, b.data, a.length) == 0;
}

static inline const uint8_t* text(const char* characters) { return (const uint8_t*)characters; }
static inline uint32_t length_of(const char* characters) { return (uint32_t)strlen(characters); }

/* Every function that hands out bytes is called twice: for the length, then for the bytes. */
static inline Bytes get(int32_t (*function)(TqLabel, uint8_t*, uint32_t*), TqLabel label) {
  uint32_t length = 0;
  need(function(label, NULL, &length) == 0, "a value cannot be had, or a label not encoded");
  Bytes bytes = allocate(length);
  need(function(label, bytes.data, &bytes.length) == 0, "the second call for bytes");
  return bytes;
}

#endif
