#include <cstddef>
#include <type_traits>

#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

#define RECORD(TYPE, SIZE, ALIGNMENT)                                                              \
    static_assert(sizeof(TYPE) == (SIZE) && alignof(TYPE) == (ALIGNMENT), #TYPE);                  \
    static_assert(std::is_standard_layout_v<TYPE> && std::is_trivially_copyable_v<TYPE>, #TYPE);
#define FIELD(TYPE, MEMBER, OFFSET, WIDTH)                                                         \
    static_assert(offsetof(TYPE, MEMBER) == (OFFSET), #TYPE "::" #MEMBER);                         \
    static_assert(sizeof(TYPE::MEMBER) == (WIDTH), #TYPE "::" #MEMBER);
#define VALUE(NAME, NUMBER) static_assert((NAME) == (NUMBER), #NAME);
#include "layout_rows.def"

static_assert(sizeof(wchar_t) == 4);
static_assert(sizeof(ENUM_CP_ISPTOOL_ACTION_TYPE) == 4);
