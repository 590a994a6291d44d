#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

#include <wchar.h>

/* C99 has no static assertion: an array with a negative size stops the compiler as well. */
#define JOIN(A, B) A##B
#define NAME(A, B) JOIN(A, B)
#define HOLDS(CONDITION) typedef char NAME(holds_, __COUNTER__)[(CONDITION) ? 1 : -1];

/* The alignment of a type is where a member of it lands after a single byte. */
#define RECORD(TYPE, SIZE, ALIGNMENT)                                                              \
    struct alignment_of_##TYPE {                                                                   \
        char first;                                                                                \
        TYPE second;                                                                               \
    };                                                                                             \
    HOLDS(sizeof(TYPE) == (SIZE))                                                                  \
    HOLDS(offsetof(struct alignment_of_##TYPE, second) == (ALIGNMENT))
#define FIELD(TYPE, MEMBER, OFFSET, WIDTH)                                                         \
    HOLDS(offsetof(TYPE, MEMBER) == (OFFSET)) HOLDS(sizeof(((TYPE *)0)->MEMBER) == (WIDTH))
#define VALUE(NAME, NUMBER) HOLDS((NAME) == (NUMBER))
#include "layout_rows.def"

HOLDS(sizeof(wchar_t) == 4)
HOLDS(sizeof(ENUM_CP_ISPTOOL_ACTION_TYPE) == 4)
