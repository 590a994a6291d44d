#include <filesystem>
#include <map>
#include <random>

#include "ParserFixture.h"
#include "support/ActionList.h"

/// JudgeFwMap over files of every interesting size; large ones are sparse.
class BankMap : public ParserTest {
  protected:
    BankMap() {
        Act(ENUM_ACTION_ISP);
    }
    void Act(ENUM_CP_ISPTOOL_ACTION_TYPE action,
             ENUM_VERSION_LOCATION_TYPE location = ENUM_VER_LOC_NONE, unsigned search = 0) {
        Change([&](auto &setting) {
            setting.enumActionType = action;
            setting.enumVersionLocationType = location;
            setting.bAutoSearchFW = search;
        });
    }
    std::string Sparse(const std::string &name, std::uintmax_t size) {
        std::string path = folder.Write(name, "");
        std::filesystem::resize_file(path, size);
        return path;
    }
    void Add(unsigned entry, const std::string &name, unsigned bank = 0) {
        ASSERT_EQ(parser->InsertCommandFwFile(entry, name.c_str()), 1);
        ASSERT_EQ(parser->InsertCommandStartBank(entry, std::to_string(bank)), 1);
    }
    Answer Judge() {
        return Ask([&] { return parser->JudgeFwMap(map); });
    }
    unsigned Banks(std::uintmax_t size) {
        std::string path = Sparse("size.bin", size);
        unsigned count = 4711;
        EXPECT_EQ(parser->GetFwBankCount(path, count), 1);
        return count;
    }
    FwBankMap map;
};

TEST_F(BankMap, GetFwBankCount_rounds_size_up_to_banks) {
    EXPECT_EQ(Banks(0), 0U);
    EXPECT_EQ(Banks(1), 1U);
    EXPECT_EQ(Banks(65535), 1U);
    EXPECT_EQ(Banks(65536), 1U);
    EXPECT_EQ(Banks(65537), 2U);
    EXPECT_EQ(Banks(131072), 2U);
    EXPECT_EQ(Banks(512U * 65536U), 512U);
    EXPECT_EQ(Banks(512U * 65536U + 1U), 513U);
}

TEST_F(BankMap, GetFwBankCount_truncates_size_to_32_bits) {
    EXPECT_EQ(Banks(0xFFFFFFFFU), 65536U);
    EXPECT_EQ(Banks(0x100000000U), 0U);
    EXPECT_EQ(Banks(0x100000001U), 1U);
}

TEST_F(BankMap, GetFwBankCount_makes_path_absolute) {
    const std::string full = Sparse("f.bin", 1);
    std::string path = "f.bin";
    unsigned count = 0;
    EXPECT_EQ(parser->GetFwBankCount(path, count), 1);
    EXPECT_EQ(path, full);
    path = folder.Path() + "./f.bin";
    EXPECT_EQ(parser->GetFwBankCount(path, count), 1);
    EXPECT_EQ(path, folder.Path() + "./f.bin");
}

TEST_F(BankMap, GetFwBankCount_prints_absolute_path_of_missing_file) {
    std::string path = "missing.bin";
    unsigned count = 4711;
    EXPECT_REFUSED(Ask([&] { return parser->GetFwBankCount(path, count); }),
                   "File open fail! " + folder.Path() + "missing.bin\n");
    EXPECT_EQ(path, folder.Path() + "missing.bin");
    EXPECT_EQ(count, 4711U);
    Add(0, "missing.bin");
    EXPECT_REFUSED(Judge(), "File open fail! " + folder.Path() + "missing.bin\n");
}

TEST_F(BankMap, JudgeFwMap_adds_one_entry_per_bank_of_file) {
    const std::string full = Sparse("f.bin", 65536U * 2U + 1U);
    Add(4, "f.bin", 250);
    EXPECT_ACCEPTED(Judge());
    ASSERT_EQ(map.size(), 3U);
    unsigned i = 0;
    for (const auto &[bank, entry] : map) {
        EXPECT_EQ(bank, 250U + i);
        EXPECT_EQ(entry.ulFileBank, i);
        EXPECT_EQ(entry.ullBankValue, 0U);
        EXPECT_EQ(entry.strFwPath, Wide(full));
        ++i;
    }
}

TEST_F(BankMap, JudgeFwMap_accepts_empty_file_and_adds_no_bank) {
    Sparse("empty.bin", 0);
    Add(0, "empty.bin");
    EXPECT_ACCEPTED(Judge());
    EXPECT_TRUE(map.empty());
}

TEST_F(BankMap, JudgeFwMap_rejects_overlap_and_keeps_earlier_banks) {
    Sparse("a.bin", 65536U * 3U);
    Sparse("b.bin", 1);
    Add(0, "a.bin");
    Add(1, "b.bin", 2);
    EXPECT_REFUSED(Judge(), "Program fw bank duplicate!\n");
    EXPECT_EQ(map.size(), 3U);
}

TEST_F(BankMap, JudgeFwMap_inserts_no_bank_of_overlapping_file) {
    Sparse("one.bin", 1);
    Sparse("three.bin", 65536U * 3U);
    Add(0, "one.bin", 12);
    Add(1, "three.bin", 10);
    EXPECT_REFUSED(Judge(), "Program fw bank duplicate!\n");
    ASSERT_EQ(map.size(), 1U);
    EXPECT_EQ(map.begin()->first, 12U);
}

TEST_F(BankMap, JudgeFwMap_processes_files_in_order_of_entries) {
    Sparse("a.bin", 1);
    Add(1, "missing.bin", 0);
    Add(0, "a.bin", 200);
    EXPECT_REFUSED(Judge(), "File open fail! " + folder.Path() + "missing.bin\n");
    ASSERT_EQ(map.size(), 1U);
    EXPECT_EQ(map.begin()->first, 200U);
}

TEST_F(BankMap, JudgeFwMap_accepts_adjacent_files) {
    Sparse("a.bin", 65536U * 2U);
    Sparse("b.bin", 65536U);
    Add(0, "a.bin", 1);
    Add(1, "b.bin", 0);
    Add(2, "b.bin", 3);
    EXPECT_ACCEPTED(Judge());
    EXPECT_EQ(map.size(), 4U);
}

TEST_F(BankMap, JudgeFwMap_checks_only_actions_that_need_firmware) {
    for (unsigned action = 0; action <= kNumberWithoutAction; ++action) {
        for (unsigned location = 0; location <= 9; ++location) {
            Act(static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(action),
                static_cast<ENUM_VERSION_LOCATION_TYPE>(location));
            const bool needed = (action >= 4 && action <= 7) || action == 17 ||
                                (action == 8 && (location == 4 || location == 6));
            const Answer answer = Judge();
            EXPECT_EQ(answer.result, needed ? 0 : 1) << action << " " << location;
            EXPECT_EQ(answer.out, needed ? "Program fw bin path should not be empty!\n" : "");
        }
    }
}

TEST_F(BankMap, JudgeFwMap_does_not_open_unneeded_firmware) {
    Add(0, "missing.bin");
    Act(ENUM_ACTION_ERASE);
    EXPECT_ACCEPTED(Judge());
    EXPECT_TRUE(map.empty());
}

TEST_F(BankMap, JudgeFwMap_accepts_no_file_after_search) {
    Act(ENUM_ACTION_ISP, ENUM_VER_LOC_NONE, 1);
    EXPECT_ACCEPTED(Judge());
    EXPECT_TRUE(map.empty());
}

TEST_F(BankMap, Start_bank_without_file_opens_current_directory) {
    ASSERT_EQ(parser->InsertCommandStartBank(0, "1"), 1);
    const Answer answer = Judge();
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "");
}

TEST_F(BankMap, Rejected_line_keeps_files_in_parser) {
    Sparse("a.bin", 1);
    EXPECT_EQ(Parse({"--isp", "--fw", "a.bin", "--comm", "99"}).result, 0);
    EXPECT_REFUSED(Parse({"--isp", "--fw", "a.bin"}),
                   "Parameter has been detected two or more times! --fw0 \n");
}

TEST_F(BankMap, Record_holds_512_banks_and_513_are_rejected) {
    Sparse("b512.bin", 512U * 65536U);
    Sparse("b1.bin", 1);
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--fw", "b512.bin"}));
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 512U);
    EXPECT_EQ(Setting()->stMapFw.ulTargetBank[511], 511U);
    EXPECT_EQ(Setting()->stMapFw.stFwBank[511].ulFileBank, 511U);
    EXPECT_REFUSED(ParseFresh({"--isp", "--fw", "b512.bin", "--bank", "1", "--fw1", "b1.bin"}),
                   "Total bank count exceeds 512!\n");
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 513U);
}

TEST_F(BankMap, JudgeFwMap_agrees_with_bank_list_for_random_files) {
    std::mt19937 random(20240601);
    const auto pick = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    for (unsigned i = 0; i < 6; ++i) {
        Sparse("r" + std::to_string(i) + ".bin", std::uintmax_t{65536} * i + (i % 2));
    }
    const unsigned banksOf[] = {0, 2, 2, 4, 4, 6};
    unsigned accepted = 0;
    for (int round = 0; round < 400; ++round) {
        Renew();
        Act(ENUM_ACTION_ISP);
        map.clear();
        std::map<unsigned, std::pair<unsigned, unsigned>> plan; // entry: file, bank
        for (unsigned i = 0, count = 1 + pick(5); i < count; ++i) {
            plan[pick(10)] = {pick(6), pick(30)};
        }
        for (const auto &[entry, place] : plan) {
            Add(entry, "r" + std::to_string(place.first) + ".bin", place.second);
        }
        // The expectation: an array of banks, filled file by file.
        int owner[64];
        unsigned fileBank[64] = {};
        std::fill(std::begin(owner), std::end(owner), -1);
        bool clash = false;
        for (const auto &[entry, place] : plan) {
            for (unsigned k = 0; k < banksOf[place.first]; ++k) {
                clash = clash || owner[place.second + k] >= 0;
            }
            if (clash) {
                break;
            }
            for (unsigned k = 0; k < banksOf[place.first]; ++k) {
                owner[place.second + k] = static_cast<int>(place.first);
                fileBank[place.second + k] = k;
            }
        }
        const Answer answer = Judge();
        EXPECT_EQ(answer.result, clash ? 0 : 1);
        EXPECT_EQ(answer.out, clash ? "Program fw bank duplicate!\n" : "");
        accepted += clash ? 0 : 1;
        for (unsigned bank = 0; bank < 64; ++bank) {
            const auto found = map.find(bank);
            ASSERT_EQ(found != map.end(), owner[bank] >= 0) << "round " << round;
            if (found != map.end()) {
                EXPECT_EQ(found->second.ulFileBank, fileBank[bank]);
                EXPECT_EQ(found->second.strFwPath,
                          Wide(folder.Path() + "r" + std::to_string(owner[bank]) + ".bin"));
            }
        }
    }
    EXPECT_GT(accepted, 50U);
    EXPECT_LT(accepted, 350U);
}
