// Runs the state load fuzz target without libFuzzer: every seed of the corpus
// folders as it is, then a fixed number of mutations of them drawn from a
// seeded generator, so that a failing run repeats exactly.
//
//   state_load_replay [--runs N] [--seed S] CORPUS_DIR...
//
// Mutations work on the bytes (flip, insert, delete, splice two seeds) and on
// the JSON (a value swapped for one of another type, a key dropped, a subtree
// copied elsewhere). A crash, a sanitizer report or a broken invariant of the
// target ends the run with the input that caused it in state-replay-crash.vlxstate.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <execinfo.h>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{
using json = nlohmann::json;

// without a debugger in the sandbox, a crash prints its stack
void printStackAndDie(int signal)
{
  void* frames[64];
  const int count = backtrace(frames, 64);
  backtrace_symbols_fd(frames, count, STDERR_FILENO);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

std::string readFile(const std::filesystem::path& path)
{
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class Mutator
{
public:
  explicit Mutator(std::uint64_t seed)
    : m_Random(seed)
  {
  }

  std::size_t below(std::size_t n)
  {
    return n == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, n - 1)(m_Random);
  }

  std::string bytes(std::string text, const std::string& other)
  {
    const int edits = 1 + static_cast<int>(below(4));
    for (int e = 0; e < edits; ++e)
    {
      switch (below(5))
      {
        case 0: // flip a byte
          if (!text.empty())
            text[below(text.size())] ^= static_cast<char>(1u << below(8));
          break;
        case 1: // insert a JSON-ish token
        {
          static const char* tokens[] = { "{",    "}",  "[",     "]",       ",",    ":",       "\"",
                                          "null", "-1", "1e308", "\\u0000", "true", "[[[[[[[[" };
          text.insert(below(text.size() + 1), tokens[below(std::size(tokens))]);
          break;
        }
        case 2: // delete a run
          if (!text.empty())
          {
            const std::size_t at = below(text.size());
            text.erase(at, 1 + below(std::min<std::size_t>(64, text.size() - at)));
          }
          break;
        case 3: // splice in part of another seed
          if (!other.empty())
          {
            const std::size_t from = below(other.size());
            text.insert(below(text.size() + 1), other.substr(from, 1 + below(256)));
          }
          break;
        default: // truncate
          text.resize(below(text.size() + 1));
          break;
      }
    }
    return text;
  }

  json randomValue(int depth = 0)
  {
    switch (below(depth > 2 ? 7 : 9))
    {
      case 0:
        return nullptr;
      case 1:
        return below(2) == 1;
      case 2:
        return static_cast<std::int64_t>(below(2000)) - 1000;
      case 3:
        return -1;
      case 4:
        return 1e300 * (below(2) == 1 ? 1 : -1);
      case 5:
        return std::string(below(3) == 0 ? "VXSurfaceRep" : "@SAMPLE@");
      case 6:
        return std::string("VXDataSource");
      case 7:
      {
        json list = json::array();
        for (std::size_t i = below(4); i > 0; --i)
          list.push_back(randomValue(depth + 1));
        return list;
      }
      default:
      {
        static const char* keys[] = { "item_type",
                                      "item_data",
                                      "item_children",
                                      "render_window_index",
                                      "imported_data_path",
                                      "core_object_visibility",
                                      "rep_view_implementations",
                                      "grid_rows",
                                      "grid_cols",
                                      "grid_cells",
                                      "view_state",
                                      "split_view_index" };
        json object = json::object();
        for (std::size_t i = below(4); i > 0; --i)
          object[keys[below(std::size(keys))]] = randomValue(depth + 1);
        return object;
      }
    }
  }

  /** A pointer to a random value of the document. */
  json* pick(json& root)
  {
    json* node = &root;
    while (node->is_structured() && !node->empty() && below(4) != 0)
    {
      auto iter = node->begin();
      std::advance(iter, static_cast<std::ptrdiff_t>(below(node->size())));
      node = &*iter;
    }
    return node;
  }

  std::string structure(const std::string& text)
  {
    json doc = json::parse(text, nullptr, false);
    if (doc.is_discarded())
      return text;
    const int edits = 1 + static_cast<int>(below(3));
    for (int e = 0; e < edits; ++e)
    {
      json* node = pick(doc);
      switch (below(3))
      {
        case 0:
          *node = randomValue();
          break;
        case 1: // drop a key or an entry
          if (node->is_object() && !node->empty())
          {
            auto iter = node->begin();
            std::advance(iter, static_cast<std::ptrdiff_t>(below(node->size())));
            node->erase(iter);
          }
          else if (node->is_array() && !node->empty())
            node->erase(node->begin() + static_cast<std::ptrdiff_t>(below(node->size())));
          break;
        default: // copy a subtree somewhere else
        {
          const json copy = *pick(doc);
          json* target = pick(doc);
          if (target->is_array())
            target->push_back(copy);
          else
            *target = copy;
          break;
        }
      }
    }
    return doc.dump(below(2) == 1 ? 2 : -1);
  }

private:
  std::mt19937_64 m_Random;
};
} // namespace

int main(int argc, char** argv)
{
  long runs = 500;
  std::uint64_t seed = 20240601;
  std::vector<std::filesystem::path> folders;
  for (int i = 1; i < argc; ++i)
  {
    const std::string arg = argv[i];
    if (arg == "--runs" && i + 1 < argc)
      runs = std::strtol(argv[++i], nullptr, 10);
    else if (arg == "--seed" && i + 1 < argc)
      seed = std::strtoull(argv[++i], nullptr, 10);
    else
      folders.emplace_back(arg);
  }

  std::signal(SIGSEGV, printStackAndDie);
  std::signal(SIGABRT, printStackAndDie);
  std::vector<std::string> seeds;
  for (const auto& folder : folders)
  {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
      if (entry.is_regular_file())
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files)
      seeds.push_back(readFile(file));
  }
  if (seeds.empty())
  {
    std::fprintf(stderr, "state_load_replay: no seeds found\n");
    return 2;
  }

  LLVMFuzzerInitialize(&argc, &argv);
  auto run = [](const std::string& input)
  {
    // kept on disk first, so that a crash leaves its reproducer
    std::ofstream("state-replay-crash.vlxstate", std::ios::binary | std::ios::trunc) << input;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  };

  for (const std::string& input : seeds)
    run(input);
  Mutator mutator(seed);
  for (long i = 0; i < runs; ++i)
  {
    const std::string& base = seeds[mutator.below(seeds.size())];
    const std::string& other = seeds[mutator.below(seeds.size())];
    run(mutator.below(2) == 0 ? mutator.bytes(base, other) : mutator.structure(base));
  }
  std::filesystem::remove("state-replay-crash.vlxstate");
  std::printf("state_load_replay: %zu seeds and %ld mutations loaded (seed %llu)\n", seeds.size(),
              runs, static_cast<unsigned long long>(seed));
  std::fflush(stdout);
  return 0;
}
