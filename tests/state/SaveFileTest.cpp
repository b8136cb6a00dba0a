#include "StateTestSupport.hpp"

#include <csignal>
#include <sys/resource.h>

using namespace statetest;

namespace
{
/**
 * Caps the size of any file this process writes, for the lifetime of the
 * object: a write beyond the cap fails with EFBIG (the signal that would
 * come with it is ignored). Works for root too, unlike a read-only folder.
 */
class FileSizeCap
{
public:
  explicit FileSizeCap(rlim_t bytes)
  {
    m_PreviousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &m_Previous);
    rlimit capped = m_Previous;
    capped.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &capped);
  }
  ~FileSizeCap()
  {
    ::setrlimit(RLIMIT_FSIZE, &m_Previous);
    std::signal(SIGXFSZ, m_PreviousHandler);
  }
  FileSizeCap(const FileSizeCap&) = delete;
  FileSizeCap& operator=(const FileSizeCap&) = delete;

private:
  rlimit m_Previous{};
  void (*m_PreviousHandler)(int) = nullptr;
};

/** Bytes a Qt file device buffers before it writes through to the disk. */
constexpr std::size_t k_FileDeviceBuffer = 16384;

class SaveFileFixture : public StateFixture
{
protected:
  void SetUp() override
  {
    StateFixture::SetUp();
    m_Module->pipeline()->importFile(qpath(pipelinetest::writeSample(m_Dir)));
    pump();
    ASSERT_FALSE(info()->modelIsEmpty());
  }

  /** Saves through the dialog to the path. */
  void saveTo(const std::filesystem::path& path)
  {
    m_Dialogs.saveAnswer = qpath(path);
    m_Module->saveState();
  }

  /** Size of the state text this module writes. */
  std::size_t stateSize()
  {
    nlohmann::json state;
    m_Module->saveState(state);
    return state.dump(2, ' ').size();
  }
};
} // namespace

TEST_F(SaveFileFixture, AFailedOpenWriteOrCommitLeavesThePreviousFileAsItWas)
{
  const auto path = m_Dir / "kept.vlxstate";
  const std::string previous = "{\"previous\": \"state, byte for byte\"}\n";
  WriteBytes(path, previous);

  // a cancelled dialog writes nothing
  m_Dialogs.saveAnswer.clear();
  m_Module->saveState();
  EXPECT_TRUE(output.isEmpty());
  EXPECT_EQ(ReadBytes(path), previous);

  // the file can't be made: a path that is a folder, a folder that isn't there
  const auto folder = m_Dir / "folder.vlxstate";
  std::filesystem::create_directories(folder);
  saveTo(folder);
  EXPECT_EQ(output, QStringList{ QString("Failed to open state file '%1'").arg(qpath(folder)) });
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  output.clear();
  const auto nowhere = m_Dir / "no-such-folder" / "state.vlxstate";
  saveTo(nowhere);
  EXPECT_EQ(output, QStringList{ QString("Failed to open state file '%1'").arg(qpath(nowhere)) });
  EXPECT_FALSE(std::filesystem::exists(nowhere));

  // the text doesn't fit on the disk: the write fails (it is larger than the
  // file device's buffer, so it goes to the disk at once)
  const std::size_t size = stateSize();
  ASSERT_GT(size, k_FileDeviceBuffer);
  output.clear();
  {
    FileSizeCap cap(size / 2);
    saveTo(path);
  }
  EXPECT_EQ(output,
            QStringList{ QString("Failed to write out state file for '%1'").arg(qpath(path)) });
  EXPECT_EQ(ReadBytes(path), previous);

  // no half-written copy stays beside it
  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(m_Dir.path()))
    files++;
  EXPECT_EQ(files, 3) << "the sample, the kept state and the folder";

  // and a save that can succeed replaces it whole
  output.clear();
  saveTo(path);
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  const std::string written = ReadBytes(path);
  nlohmann::json state;
  m_Module->saveState(state);
  EXPECT_EQ(written, state.dump(2, ' '));
}

TEST_F(SaveFileFixture, ATextThatFitsTheBufferFailsInTheCommit)
{
  // an empty tree: the text stays in the file device's buffer until the commit flushes it
  freshModule();
  const std::size_t size = stateSize();
  ASSERT_LT(size, k_FileDeviceBuffer);
  const auto path = m_Dir / "target.vlxstate";
  WriteBytes(path, "old");
  {
    FileSizeCap cap(size / 2);
    saveTo(path);
  }
  EXPECT_EQ(output, QStringList{ QString("Failed to commit state file '%1'").arg(qpath(path)) });
  EXPECT_EQ(ReadBytes(path), "old");
  int files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(m_Dir.path()))
    files++;
  EXPECT_EQ(files, 2) << "the sample and the kept state";
}
