/**
 * @file
 * The DER layer of tqlabel: element nodes, the primitives that split and build elements, and the
 * allocator of both libraries.
 *
 * What is read and written is DER (X.690): definite lengths in their shortest form, tags of one
 * octet, children that fill their parent exactly, each universal type in its one form (SEQUENCE and
 * SET constructed, all others primitive). Bytes behind an outermost element are ignored.
 *
 * Conventions
 * - Every function that can fail returns 0 for success and -1 for failure. A failed call leaves its
 *   outputs as they were.
 * - A Get primitive takes one element: a node whose bytes begin with the tag octet. It allocates
 *   what it hands out and never changes or takes over its input.
 * - A Set primitive builds one element. Where it takes a chain of nodes, it takes the chain over on
 *   success and leaves it to the caller on failure.
 * - Nodes that a primitive has handed out are released with DIFreeAnybuf().
 * - There is no global state. Distinct nodes may be used from distinct threads.
 */
#ifndef TQASN1_ASN1_H
#define TQASN1_ASN1_H

#include <stddef.h>
#include <stdint.h>

/** Marks a function that libtqasn1 exports. */
#define TQ_ASN1_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/** Values of ANYBUF::form: who owns the bytes that a node points to. */
enum {
  ASN1_FORM_OWNED = 0,  /**< a block of their own, which belongs to the node */
  ASN1_FORM_INLINE = 1, /**< the bytes lie behind the node, in its own block */
  ASN1_FORM_VIEW = 2    /**< somebody else's, who keeps them for as long as the node is used */
};

/**
 * One element, or the contents of one: the node of all primitives and the byte field of all
 * records.
 *
 * A node is *encoded*, its bytes being a whole element or a content, or it is a *tree*: an element
 * that a Set primitive has built around other nodes and that has no bytes yet (`data` is null,
 * `length` is the size that its encoding will have). QZCopyAnyBuf() encodes a tree.
 */
typedef struct ANYBUF {
  uint8_t* data;       /**< the bytes, or null */
  uint32_t length;     /**< their number */
  uint32_t flags;      /**< 0; the layer's own in nodes that belong to a tree */
  uint32_t form;       /**< one of the ASN1_FORM values */
  uint32_t type;       /**< universal tag number; the whole tag octet of any other class */
  struct ANYBUF* next; /**< the next sibling, or null */
  void* last;          /**< the layer's own: null in every node that is not a tree */
} ANYBUF;

/* Memory. Every allocation of both libraries goes through the first two, by name, so that a program
 * may define or preload a pair of its own. */

/**
 * Allocates a block.
 * @param size  bytes; 0 gives a unique pointer
 * @return the block, not cleared and aligned for any object, or null; released with Asn1Free()
 */
TQ_ASN1_API void* Asn1Malloc(size_t size);

/**
 * Releases a block of Asn1Malloc().
 * @param block  the block, or null
 */
TQ_ASN1_API void Asn1Free(void* block);

/**
 * Copies bytes between blocks that do not overlap.
 * @param to      destination; may be null when @p length is 0
 * @param from    source; may be null when @p length is 0
 * @param length  number of bytes
 * @return @p to
 */
TQ_ASN1_API void* Asn1memcpy(void* to, const void* from, size_t length);

/**
 * Fills a block.
 * @param block   the block; may be null when @p length is 0
 * @param value   the value; its low 8 bits count
 * @param length  number of bytes
 * @return @p block
 */
TQ_ASN1_API void* Asn1memset(void* block, int value, size_t length);

/**
 * Compares bytes as unsigned values.
 * @param left    first block; may be null when @p length is 0
 * @param right   second block; may be null when @p length is 0
 * @param length  number of bytes
 * @return below, equal to or above 0, as @p left sorts before, with or after @p right
 */
TQ_ASN1_API int Asn1memcmp(const void* left, const void* right, size_t length);

/* Nodes. */

/**
 * Releases a chain of nodes: every sibling, every tree below them, and all bytes that they own.
 * Linear in the number of nodes; the depth of a tree does not count.
 * @param chain  the first node, or null
 */
TQ_ASN1_API void DIFreeAnybuf(ANYBUF* chain);

/**
 * Releases a chain of nodes and clears the pointer to it.
 * @param chain  pointer to the first node; it or what it points to may be null
 */
TQ_ASN1_API void QZFreeQueue(ANYBUF** chain);

/**
 * Copies one whole element, encoding it where it is a tree: each byte is written once, however
 * deep the tree.
 *
 * Bytes that are not empty must be exactly one well-formed element, by its outer header. An empty
 * node yields a node of no bytes, which adds nothing to a parent.
 * @param element  node to copy, not null; not changed
 * @param copy     receives the new node, with its bytes in its own block and its type from the
 *                 element's tag (of a node of no bytes: as it was)
 * @retval 0   copied
 * @retval -1  a null argument, bytes that are not one element, or no memory
 */
TQ_ASN1_API int32_t QZCopyAnyBuf(const ANYBUF* element, ANYBUF** copy);

/* Constructed elements. */

/**
 * Splits a SEQUENCE (X.690 8.9) into its children.
 * @param element   node whose bytes begin with the SEQUENCE, not null
 * @param children  receives the chain of children in their order, null when there are none; they
 *                  are views of the bytes of @p element, which must outlive them
 * @retval 0   split
 * @retval -1  a null argument, no such element, children that do not fill it, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetSequence(const ANYBUF* element, ANYBUF** children);

/**
 * Builds a SEQUENCE around a chain of elements, in its order.
 * @param children  first of the elements, or null; taken over on success
 * @param element   receives the new tree
 * @retval 0   built
 * @retval -1  a null argument, a child that is not one element, more than 2^32 - 1 octets, or no
 *             memory; the chain stays the caller's
 */
TQ_ASN1_API int32_t QZAsn1SetSequence(ANYBUF* children, ANYBUF** element);

/**
 * Splits a SET (X.690 8.11) into its children, in the order in which they lie there.
 * @param element   node whose bytes begin with the SET, not null
 * @param children  as of QZAsn1GetSequence()
 * @retval 0   split
 * @retval -1  as of QZAsn1GetSequence()
 */
TQ_ASN1_API int32_t QZAsn1GetSet(const ANYBUF* element, ANYBUF** children);

/**
 * Builds a SET around a chain of elements. The order of the chain is kept: nothing is sorted.
 * @param children  first of the elements, or null; taken over on success
 * @param element   receives the new tree
 * @retval 0   built
 * @retval -1  as of QZAsn1SetSequence()
 */
TQ_ASN1_API int32_t QZAsn1SetSet(ANYBUF* children, ANYBUF** element);

/**
 * Opens an EXPLICIT tag (X.690 8.14), which holds exactly one element.
 * @param element  node whose bytes begin with a constructed context-specific tag, not null
 * @param number   receives the tag number, 0 to 30
 * @param inner    receives a node for the element within, a view of the bytes of @p element
 * @retval 0   opened
 * @retval -1  a null argument, another tag, not exactly one element within, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetExplicit(const ANYBUF* element, uint32_t* number, ANYBUF** inner);

/**
 * Wraps one element in an EXPLICIT tag.
 * @param number   tag number, 0 to 30
 * @param inner    the element, a single node, not null; taken over on success
 * @param element  receives the new tree
 * @retval 0   built
 * @retval -1  a null argument, a number above 30, not exactly one element, too many octets, or no
 *             memory; @p inner stays the caller's
 */
TQ_ASN1_API int32_t QZAsn1SetExplicit(uint32_t number, ANYBUF* inner, ANYBUF** element);

/* Values. */

/**
 * Reads an INTEGER (X.690 8.3) of 32 bits without a sign.
 * @param element  node whose bytes begin with the element, not null
 * @param value    receives the value
 * @retval 0   read
 * @retval -1  a null argument, another element, a negative value, one above 2^32 - 1, or content
 *             that is not the shortest
 */
TQ_ASN1_API int32_t QZAsn1GetInteger(const ANYBUF* element, uint32_t* value);

/**
 * Builds an INTEGER; it is never negative (2^32 - 1 has five content octets).
 * @param value    the value
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetInteger(uint32_t value, ANYBUF** element);

/**
 * Reads a BOOLEAN (X.690 11.1).
 * @param element  node whose bytes begin with the element, not null
 * @param value    receives 0 or 1
 * @retval 0   read
 * @retval -1  a null argument, another element, or content other than 0x00 and 0xFF
 */
TQ_ASN1_API int32_t QZAsn1GetBoolean(const ANYBUF* element, uint8_t* value);

/**
 * Builds a BOOLEAN.
 * @param value    0 for false; anything else is true, written as 0xFF
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetBoolean(uint8_t value, ANYBUF** element);

/**
 * Reads a GeneralizedTime (X.690 11.7) of the form YYYYMMDDHHMMSSZ.
 * @param element  node whose bytes begin with the element, not null
 * @param seconds  receives the time in seconds since the Unix epoch
 * @retval 0   read
 * @retval -1  a null argument, another element, another form, or no real date from 1970 to 9999
 */
TQ_ASN1_API int32_t QZAsn1GetGeneralizedTime(const ANYBUF* element, uint64_t* seconds);

/**
 * Builds a GeneralizedTime.
 * @param seconds  time in seconds since the Unix epoch, to 9999-12-31T23:59:59Z
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a later time, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetGeneralizedTime(uint64_t seconds, ANYBUF** element);

/**
 * Builds a NULL (X.690 8.8).
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetNull(ANYBUF** element);

/* Strings of octets. Each Get primitive copies the content octets into a node that owns them
 * (ASN1_FORM_OWNED; no bytes at all for an empty content) and gives it the type of the element.
 * Each Set primitive takes such a node (any form; its type is not looked at) and copies its bytes
 * into a new element. */

/**
 * Reads the content octets of an INTEGER unchanged, none at all included.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetIntegerArray(const ANYBUF* element, ANYBUF** content);

/**
 * Builds an INTEGER of exactly these content octets, none at all included.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetIntegerArray(const ANYBUF* content, ANYBUF** element);

/**
 * Reads an OCTET STRING (X.690 8.7).
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetOctetString(const ANYBUF* element, ANYBUF** content);

/**
 * Builds an OCTET STRING.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetOctetString(const ANYBUF* content, ANYBUF** element);

/**
 * Reads a BIT STRING (X.690 8.6) of whole octets.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, unused bits, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetBitString(const ANYBUF* element, ANYBUF** content);

/**
 * Builds a BIT STRING of whole octets.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetBitString(const ANYBUF* content, ANYBUF** element);

/**
 * Reads a PrintableString (X.690 8.23); its characters are not checked.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetPrintableString(const ANYBUF* element, ANYBUF** content);

/**
 * Builds a PrintableString; its characters are not checked.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetPrintableString(const ANYBUF* content, ANYBUF** element);

/**
 * Reads an IA5String; its characters are not checked.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetIa5String(const ANYBUF* element, ANYBUF** content);

/**
 * Builds an IA5String; its characters are not checked.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetIa5String(const ANYBUF* content, ANYBUF** element);

/**
 * Reads a BMPString; its characters are not checked.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetBmpString(const ANYBUF* element, ANYBUF** content);

/**
 * Builds a BMPString; its characters are not checked.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetBmpString(const ANYBUF* content, ANYBUF** element);

/**
 * Reads the content octets of an OBJECT IDENTIFIER (X.690 8.19) unchanged, none included.
 * @param element  node whose bytes begin with the element, not null
 * @param content  receives the new node
 * @retval 0   read
 * @retval -1  a null argument, another element, or no memory
 */
TQ_ASN1_API int32_t QZAsn1GetObjectIdPJ(const ANYBUF* element, ANYBUF** content);

/**
 * Builds an OBJECT IDENTIFIER of exactly these content octets, none included.
 * @param content  node of the content octets, not null
 * @param element  receives the new node
 * @retval 0   built
 * @retval -1  a null argument, a length but no bytes, too many octets, or no memory
 */
TQ_ASN1_API int32_t QZAsn1SetObjectIdPJ(const ANYBUF* content, ANYBUF** element);

#ifdef __cplusplus
}
#endif

#endif
