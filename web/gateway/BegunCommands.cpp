// Commands that have begun and are not known to have ended, kept on disk across restarts.
#include "BegunCommands.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "StoredFile.h"

namespace gateway {

namespace {

std::string folderOf(const std::string& aDataFolder) {
  return aDataFolder + "/begun";
}

struct Found {
  bool goesOn = false;
  std::string line;  ///< empty if the command has just ended, or never began
};

Found look(const std::string& aPath) {
  const Descriptor file(::open(aPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  struct stat state = {};
  if (!file.isOpen()) {
    return {};
  }
  const bool goesOn = ::flock(file.get(), LOCK_SH | LOCK_NB) != 0;
  // The command may have ended between open and lock: then the file has been unlinked.
  if (::fstat(file.get(), &state) != 0 || state.st_nlink == 0) {
    return {};
  }
  const std::string line = contentOf(file.get());
  // A crash while the line was being written leaves it without a newline.
  return line.empty() || line.back() != '\n' ? Found() : Found{goesOn, line};
}

}  // namespace

BegunCommand::BegunCommand(const std::string& aDataFolder, const std::string& aId,
                           const std::string& aLine)
    : mPath(folderOf(aDataFolder) + '/' + aId) {
  const std::string folder = folderOf(aDataFolder);
  makeFolder(folder);
  mFile = Descriptor(::open(mPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  // Locked before it has content: a file without a complete line is not yet a command.
  mIsKept = mFile.isOpen() && ::flock(mFile.get(), LOCK_EX) == 0 &&
            writeToDisk(mFile.get(), aLine) && syncFolder(folder);
  if (mFile.isOpen() && !mIsKept) {
    forget();
  }
}

void BegunCommand::forget() const {
  ::unlink(mPath.c_str());
}

UnfinishedCommands findUnfinished(const std::string& aDataFolder) {
  UnfinishedCommands unfinished;
  const std::string folder = folderOf(aDataFolder);
  for (const std::string& name : namesIn(folder)) {
    const Found found = look(std::string(folder).append("/").append(name));
    if (!found.line.empty()) {
      (found.goesOn ? unfinished.goingOn : unfinished.interrupted).push_back(found.line);
    }
  }
  // Each line begins with its time.
  std::sort(unfinished.goingOn.begin(), unfinished.goingOn.end());
  std::sort(unfinished.interrupted.begin(), unfinished.interrupted.end());
  return unfinished;
}

eInterruption findInterrupted(const std::string& aDataFolder, const std::string& aId) {
  const Found found = look(folderOf(aDataFolder) + '/' + aId);
  if (found.line.empty()) {
    return eInterruption::eNone;
  }
  return found.goesOn ? eInterruption::eGoesOn : eInterruption::eFound;
}

void forgetInterrupted(const std::string& aDataFolder, const std::string& aId) {
  ::unlink((folderOf(aDataFolder) + '/' + aId).c_str());
}

}  // namespace gateway
