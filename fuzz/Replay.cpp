// Runs a fuzz target once on every file of the folders that are given.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    constexpr auto links = std::filesystem::directory_options::follow_directory_symlink;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i], links)) {
      if (entry.is_directory()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string input(std::istreambuf_iterator<char>(file), {});
      std::printf("%s\n", entry.path().c_str());
      std::fflush(stdout);  // a target that finds something does not return
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
      ++count;
    }
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
