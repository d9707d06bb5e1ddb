// A scratch folder for the JSON file suites: files are created from text and read back.
#ifndef KAVO_TESTS_PUSH_JSON_JSON_TEST_UTIL_H
#define KAVO_TESTS_PUSH_JSON_JSON_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace KavoTest {

class ScratchDirTest : public testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/kavo_json_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string PathOf(const std::string& name) const { return dir_ + "/" + name; }

    std::string Write(const std::string& name, const std::string& text) const
    {
        std::string path = PathOf(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    static std::string ReadAll(const std::string& path)
    {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    std::string dir_;
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_PUSH_JSON_JSON_TEST_UTIL_H
