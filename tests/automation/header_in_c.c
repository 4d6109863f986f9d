/* The interface's header is C, and says so to a C compiler. */
#include "zrqrybld/zrqrybld.h"

_Static_assert(sizeof(zrq_value) == 8 + sizeof(((zrq_value*)0)->as), "a value holds its type and what it is");

int32_t AbiSeenFromC(void);
int32_t AbiSeenFromC(void) { return zrq_abi() == ZRQ_ABI ? ZRQ_ABI : 0; }
