#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kx::core
{
/** A failure: a code and a message for the user. */
struct Error
{
  int code = 0;
  std::string message;
};

/** Something the caller may want to know about a successful operation. */
struct Warning
{
  int code = 0;
  std::string message;
};

/**
 * Holds a value or a list of errors; in both cases a list of warnings.
 * Valid means: no errors.
 */
template<typename T = void>
class Result
{
public:
  Result() = default;
  Result(T value)
    : m_Value(std::move(value))
  {
  }
  Result(T value, std::vector<Warning> warnings)
    : m_Value(std::move(value))
    , m_Warnings(std::move(warnings))
  {
  }
  explicit Result(std::vector<Error> errors, std::vector<Warning> warnings = {})
    : m_Errors(std::move(errors))
    , m_Warnings(std::move(warnings))
  {
  }

  bool isValid() const { return m_Errors.empty() && m_Value.has_value(); }

  T& value() { return *m_Value; }
  const T& value() const { return *m_Value; }

  const std::vector<Error>& errors() const { return m_Errors; }
  const std::vector<Warning>& warnings() const { return m_Warnings; }
  std::vector<Warning>& warnings() { return m_Warnings; }

private:
  std::optional<T> m_Value;
  std::vector<Error> m_Errors;
  std::vector<Warning> m_Warnings;
};

namespace detail
{
/** Result of an operation that gives no value. */
class ResultVoid
{
public:
  ResultVoid() = default;
  explicit ResultVoid(std::vector<Error> errors, std::vector<Warning> warnings = {})
    : m_Errors(std::move(errors))
    , m_Warnings(std::move(warnings))
  {
  }

  bool isValid() const { return m_Errors.empty(); }
  const std::vector<Error>& errors() const { return m_Errors; }
  const std::vector<Warning>& warnings() const { return m_Warnings; }
  std::vector<Warning>& warnings() { return m_Warnings; }

private:
  std::vector<Error> m_Errors;
  std::vector<Warning> m_Warnings;
};
} // namespace detail

template<>
class Result<void> : public detail::ResultVoid
{
public:
  using detail::ResultVoid::ResultVoid;
};

using ResultVoid = Result<void>;

template<typename T = void>
Result<T> MakeErrorResult(int code, std::string message)
{
  return Result<T>(std::vector<Error>{ Error{ code, std::move(message) } });
}
} // namespace kx::core
