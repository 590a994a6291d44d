#include <gtest/gtest.h>

#include "station/Sha256.h"

namespace {

struct Vector {
    std::string text;
    const char *hash;
};

// Of FIPS 180-4 and of its examples; lengths around the end of a block have a padding of their own.
TEST(Sha256, Finish_returns_hashes_of_the_standard) {
    const Vector vectors[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrl"
         "m"
         "nopqrsmnopqrstnopqrstu",
         "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
        {std::string(55, 'a'), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
        {std::string(56, 'a'), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
        {std::string(64, 'a'), "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"}};
    for (const Vector &vector : vectors) {
        EXPECT_EQ(ispctl::Sha256Of(vector.text), vector.hash) << vector.text.size();
    }
}

TEST(Sha256, Pieces_of_any_length_give_same_hash) {
    const std::string text(1000, 'x');
    for (std::size_t length = 1; length < 130; ++length) {
        ispctl::Sha256 hash;
        for (std::size_t at = 0; at < text.size(); at += length) {
            hash.Add(std::string_view(text).substr(at, length));
        }
        EXPECT_EQ(hash.Finish(), ispctl::Sha256Of(text)) << length;
    }
}

} // namespace
