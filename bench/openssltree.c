#include "openssltree.h"

#include <openssl/asn1.h>
#include <openssl/asn1t.h>
#include <openssl/safestack.h>

typedef struct {
    ASN1_BMPSTRING* name;
    ASN1_OCTET_STRING* content;
} treePair;

DEFINE_STACK_OF(treePair)

ASN1_SEQUENCE(treePair) = {ASN1_SIMPLE(treePair, name, ASN1_BMPSTRING),
                           ASN1_SIMPLE(treePair, content,
                                       ASN1_OCTET_STRING)} static_ASN1_SEQUENCE_END(treePair)

    ASN1_ITEM_TEMPLATE(treePairs) = ASN1_EX_TEMPLATE_TYPE(ASN1_TFLG_SEQUENCE_OF, 0, treePairs,
                                                          treePair)
                                        static_ASN1_ITEM_TEMPLATE_END(treePairs)

                                            treePairs
                                    * makeTree(size_t count, const unsigned char* const* names,
                                               const size_t* nameSizes,
                                               const unsigned char* contents, size_t contentSize)
{
    STACK_OF(treePair)* const tree = sk_treePair_new_reserve(NULL, (int)count);
    for (size_t i = 0; i < count; ++i) {
        treePair* const pair = (treePair*)ASN1_item_new(ASN1_ITEM_rptr(treePair));
        ASN1_STRING_set(pair->name, names[i], (int)nameSizes[i]);
        ASN1_STRING_set(pair->content, contents + i * contentSize, (int)contentSize);
        sk_treePair_push(tree, pair);
    }
    return (treePairs*)tree;
}

size_t encodeTree(const treePairs* tree)
{
    unsigned char* bytes = NULL;
    const int size = ASN1_item_i2d((const ASN1_VALUE*)tree, &bytes, ASN1_ITEM_rptr(treePairs));
    OPENSSL_free(bytes);
    return size < 0 ? 0 : (size_t)size;
}

treePairs* decodeTree(const unsigned char* bytes, size_t size)
{
    return (treePairs*)ASN1_item_d2i(NULL, &bytes, (long)size, ASN1_ITEM_rptr(treePairs));
}

size_t countOfTree(const treePairs* tree)
{
    return (size_t)sk_treePair_num((const STACK_OF(treePair)*)tree);
}

void freeTree(treePairs* tree)
{
    ASN1_item_free((ASN1_VALUE*)tree, ASN1_ITEM_rptr(treePairs));
}
