#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The benchmark's pairs as another library's tree: SEQUENCE OF SEQUENCE { BMPString, OCTET STRING }. */
typedef struct treePairs treePairs;

/* makeTree copies the pairs: names in big-endian units, all contents of one size. */
treePairs* makeTree(size_t count, const unsigned char* const* names, const size_t* nameSizes,
                    const unsigned char* contents, size_t contentSize);
/* encodeTree gives the encoded size; the bytes are freed at once. */
size_t encodeTree(const treePairs* tree);
treePairs* decodeTree(const unsigned char* bytes, size_t size);
size_t countOfTree(const treePairs* tree);
void freeTree(treePairs* tree);

#ifdef __cplusplus
}
#endif
