// Alone in this file: nothing here may be inlined into its callers, and a program that links the
// objects and brings its own pair must not be made to pull in this one.

#include <tqasn1/asn1.h>

#include <cstdlib>

void* Asn1Malloc(size_t size) { return std::malloc(size != 0 ? size : 1); }

void Asn1Free(void* block) { std::free(block); }
