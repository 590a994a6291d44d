#include <climits>

#include "ParserFixture.h"
#include "support/ActionList.h"

using MaskConverters = ParserTest;

TEST_F(MaskConverters, JudgeUniqueAttribute_accepts_one_bit) {
    for (int bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(parser->JudgeUniqueAttribute(static_cast<int>(1U << bit)), 1) << bit;
    }
}

TEST_F(MaskConverters, JudgeUniqueAttribute_rejects_no_bit_or_several) {
    for (const int mask : {0, 3, 5, 6, 7, 0x1001, -1, INT_MIN + 1, INT_MAX}) {
        EXPECT_EQ(parser->JudgeUniqueAttribute(mask), 0) << mask;
    }
}

TEST_F(MaskConverters, GetActionType_converts_every_action_bit) {
    for (const ListedAction &row : kListedActions) {
        auto action = static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(99);
        parser->GetActionType(static_cast<int>(row.bit), action);
        EXPECT_EQ(static_cast<unsigned>(action), row.HasNoLine() ? 0U : row.number) << row.name;
    }
}

TEST_F(MaskConverters, GetActionType_returns_none_for_unknown_bit) {
    for (const int mask : {0, 3, static_cast<int>(kBitWithoutAction), INT_MIN, -1}) {
        auto action = static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(99);
        parser->GetActionType(mask, action);
        EXPECT_EQ(static_cast<unsigned>(action), 0U) << mask;
    }
}

TEST_F(MaskConverters, Factoryisp_option_has_no_action_value) {
    auto action = static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(99);
    parser->GetActionType(0x10000, action);
    EXPECT_EQ(static_cast<unsigned>(action), 0U);
    EXPECT_REFUSED(ParseFresh({"--factoryisp"}), "Action type undefined or illegal!\n");
}

TEST_F(MaskConverters, GetDigitalSignatureType_converts_mask_1_and_2) {
    const struct {
        int mask;
        unsigned type;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 0}, {4, 0}, {-1, 0}};
    for (const auto &row : rows) {
        auto type = static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(99);
        parser->GetDigitalSignatureType(row.mask, type);
        EXPECT_EQ(static_cast<unsigned>(type), row.type) << row.mask;
    }
}

TEST_F(MaskConverters, GetMergeFwInfoMode_returns_write_for_write_bit_alone) {
    const struct {
        int mask;
        unsigned mode;
    } rows[] = {{0, 0}, {1, 0}, {2, 1}, {3, 0}, {4, 0}, {-2, 0}};
    for (const auto &row : rows) {
        auto mode = static_cast<ENUM_CP_MERGE_FW_INFO_MODE>(99);
        parser->GetMergeFwInfoMode(row.mask, mode);
        EXPECT_EQ(static_cast<unsigned>(mode), row.mode) << row.mask;
    }
}

TEST_F(MaskConverters, GetVersionType_converts_every_location_bit) {
    const struct {
        int mask;
        unsigned location;
    } rows[] = {{1, 1},  {2, 2},   {4, 3}, {8, 4}, {16, 5}, {32, 6},
                {64, 7}, {128, 8}, {0, 0}, {3, 0}, {256, 0}};
    for (const auto &row : rows) {
        auto location = static_cast<ENUM_VERSION_LOCATION_TYPE>(99);
        auto mode = static_cast<ENUM_USER_DEFINED_VERSION_TYPE>(77);
        EXPECT_ACCEPTED(Ask([&] { return parser->GetVersionType(row.mask, location, mode, "3"); }));
        EXPECT_EQ(static_cast<unsigned>(location), row.location) << row.mask;
        EXPECT_EQ(static_cast<unsigned>(mode), row.mask == 128 ? 3U : 77U) << row.mask;
    }
}

TEST_F(MaskConverters, GetVersionType_accepts_user_defined_mode_1_to_5) {
    const struct {
        const char *text;
        int result;
        const char *message;
        unsigned mode;
    } rows[] = {
        {"1", 1, "", 1},
        {"0x5", 1, "", 5},
        {"05", 1, "", 5},
        {"0", 0, "Get user defined version mode fail, mode is: 0\n", 77},
        {"6", 0, "Get user defined version mode fail, mode is: 6\n", 77},
        {"-1", 0, "Get user defined version mode fail, mode is: -1\n", 77},
        {"", 0, "Get user defined version mode fail, mode is: \n", 77},
        {"2x", 0, "User defined version mode illegal, mode is: 2x\n", 77},
        {"auto", 0, "User defined version mode illegal, mode is: auto\n", 77},
    };
    for (const auto &row : rows) {
        auto location = static_cast<ENUM_VERSION_LOCATION_TYPE>(99);
        auto mode = static_cast<ENUM_USER_DEFINED_VERSION_TYPE>(77);
        const Answer answer =
            Ask([&] { return parser->GetVersionType(128, location, mode, row.text); });
        EXPECT_EQ(answer.result, row.result) << row.text;
        EXPECT_EQ(answer.out, row.message);
        EXPECT_EQ(static_cast<unsigned>(mode), row.mode) << row.text;
        EXPECT_EQ(static_cast<unsigned>(location), 8U);
    }
}
