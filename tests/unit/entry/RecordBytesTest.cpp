#include "RunFlowFixture.h"
#include "support/TestHeap.h"

namespace {

using Bytes = std::vector<unsigned char>;

template <class Record> Bytes BytesOf(const Record &record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, bytes.size());
    return bytes;
}

/// The first byte that differs, or the number of bytes.
std::size_t FirstDifference(const Bytes &left, const Bytes &right) {
    return static_cast<std::size_t>(
        std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first - left.begin());
}

} // namespace

/// What plug-ins receive, compared with a record written down here, padding included. The records
/// of the library lie in memory that is not clean (RecordAllocationLimit).
class RecordBytes : public RunFlowTest {
  protected:
    using Fill = std::function<void(Record &)>;

    /// A default record in clean memory, and then changed.
    static Bytes Expected(const Fill &change) {
        struct Deleter {
            void operator()(Record *record) const {
                ::operator delete(static_cast<void *>(record));
            }
        };
        // The compiler does not see that the memory is clean, so it cannot leave that out.
        void *volatile memory = ::operator new(sizeof(Record));
        std::memset(memory, 0, sizeof(Record));
        const std::unique_ptr<Record, Deleter> record(::new (memory) Record);
        change(*record);
        return BytesOf(*record);
    }

    /// Notes the records of all calls of a function.
    void Watch(const std::string &name, bool signRecord = false) {
        module.answer = [this, name, signRecord,
                         standardAnswer = module.answer](const ModuleCall &call) {
            if (call.name == name) {
                seen.push_back(signRecord ? BytesOf(*static_cast<Sign *>(call.first))
                                          : BytesOf(*static_cast<Record *>(call.first)));
            }
            return standardAnswer(call);
        };
    }

    static int Operate(const std::string &line) {
        const std::wstring wide(line.begin(), line.end());
        int result = -99;
        OutputOf([&] { result = OperateScaler(wide.c_str(), nullptr, nullptr, nullptr); });
        return result;
    }

    template <std::size_t N> static void Put(wchar_t (&field)[N], const std::string &text) {
        std::copy(text.begin(), text.end(), field);
    }

    TempFolder folder;
    std::vector<Bytes> seen;
    const std::string own = ProgramDirectory().string() + "/";
};

TEST_F(RecordBytes, Line_gives_plugin_command_record_of_known_bytes) {
    const std::string file = folder.Write("f.bin", std::string(65537, 'f'));
    Watch("IspFlash");
    EXPECT_EQ(Operate("p --isp --bank 7 --comm 3 --fw " + file), 0);
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(FirstDifference(seen[0], Expected([&](Record &expected) {
                                  expected.enumActionType = ENUM_ACTION_ISP;
                                  expected.enumVersionLocationType = ENUM_VER_LOC_NONE;
                                  expected.enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(3);
                                  expected.enumIspMode = 1;
                                  expected.stMapFw.ulFwCount = 2;
                                  expected.stMapFw.ulTargetBank[0] = 7;
                                  expected.stMapFw.ulTargetBank[1] = 8;
                                  expected.stMapFw.stFwBank[1].ulFileBank = 1;
                                  Put(expected.stMapFw.stFwBank[0].wszFwPath, file);
                                  Put(expected.stMapFw.stFwBank[1].wszFwPath, file);
                                  Put(expected.wszSettingFile, own + "IspSetting.ini");
                              })),
              546704U);
}

TEST_F(RecordBytes, Line_gives_plugin_sign_record_of_known_bytes) {
    const std::string file = folder.Write("f.bin", "f");
    Watch("SignFwExport", true);
    EXPECT_EQ(Operate("p --sign --sw --dsmode 2 --keypair 3 --fw " + file), 0);
    ASSERT_EQ(seen.size(), 1U);
    Sign expected;
    expected.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
    expected.enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    expected.enumSWDigitalSignatureMode = ENUM_SIGN_SW_MODE_VXM_INTERNAL;
    expected.nKeyPair = 3;
    file.copy(expected.szFwFile, 260);
    (file + ".sig").copy(expected.szSignatureFile, 260);
    expected.szKeyPair[0] = '3';
    EXPECT_EQ(FirstDifference(seen[0], BytesOf(expected)), 1840U);
}

TEST_F(RecordBytes, Boot_pass_gives_plugin_record_of_known_bytes) {
    const std::string boot = folder.Write("boot.bin", std::string(65537, 'b'));
    Act(25);
    Boot(boot);
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(9);
    Watch("IspFlash");
    EXPECT_EQ(Run(), 0);
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(FirstDifference(seen[0], Expected([&](Record &expected) {
                                  expected.enumActionType = ENUM_ACTION_ISP;
                                  expected.stMapFw.ulFwCount = 2;
                                  expected.stMapFw.ulTargetBank[1] = 1;
                                  expected.stMapFw.stFwBank[1].ulFileBank = 1;
                                  Put(expected.stMapFw.stFwBank[0].wszFwPath, boot);
                                  Put(expected.stMapFw.stFwBank[1].wszFwPath, boot);
                              })),
              546704U);
}

TEST_F(RecordBytes, Key_read_gets_record_with_cleared_map) {
    unsigned state = 1;
    Bytes given(sizeof(Record));
    for (unsigned char &byte : given) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(state >> 24);
    }
    std::memcpy(static_cast<void *>(record.get()), given.data(), given.size());
    Act(25);
    record->enumIspMode = 1;
    SignedBySoftware(4);
    const auto emptied = std::make_unique<Record>(*record);
    emptied->ClearMapFW();
    Watch("GetKeyFromFlash");
    EXPECT_EQ(Run(), 0);
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(FirstDifference(seen[0], BytesOf(*emptied)), 546704U);
    EXPECT_LT(FirstDifference(seen[0], BytesOf(*record)), 2144U) << "the map was emptied";
}
