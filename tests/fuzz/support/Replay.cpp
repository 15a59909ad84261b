// The main program of a fuzzer built without libFuzzer: runs it on the given files and on every
// file of the given folders.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize);

namespace {

int run(const std::filesystem::path& aFile) {
  std::ifstream file(aFile, std::ios::binary);
  const std::vector<char> octets{std::istreambuf_iterator<char>(file), {}};
  if (!file) {
    std::fprintf(stderr, "Cannot read %s\n", aFile.c_str());
    return -1;
  }
  // Printed before the run: the last name printed is that of the failing input.
  std::printf("%s\n", aFile.c_str());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(octets.data()), octets.size());
  return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    const bool isFolder = std::filesystem::is_directory(argv[i]);
    std::vector<std::filesystem::path> files;
    if (isFolder) {
      files.assign(std::filesystem::directory_iterator(argv[i]), {});
    } else {
      files.emplace_back(argv[i]);
    }
    for (const std::filesystem::path& file : files) {
      if (run(file) != 0) {
        return 1;
      }
      ++inputs;
    }
  }
  std::printf("%d inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
