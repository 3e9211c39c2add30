#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Runs the linked fuzz target on every file of the folder named by the only argument, so that past
// findings are checked with any compiler. Fails if there is no file.
int main(int count, char** arguments) {
  if (count != 2) return 2;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)),
                            std::istreambuf_iterator<char>());
    std::fprintf(stderr, "%s\n", entry.path().filename().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++files;
  }
  std::printf("%zu files replayed\n", files);
  return files == 0 ? 1 : 0;
}
