// ExpectThrow.h - checks that a statement throws one exact exception type and message
//
// EXPECT_QUARN_THROW(stmt, "text") passes when `stmt` throws quarn::Exception
// itself (not a subclass) whose what() is exactly "text";
// EXPECT_QUARN_THROW_AS(stmt, Type, "text") does the same for `Type`.
#pragma once

#include <string>
#include <typeinfo>

#include <gtest/gtest.h>
#include <quarnCore/Exception.h>

namespace quarn::test {

template <class E, class F>
::testing::AssertionResult throwsExactly(F &&statement, std::string const &message) {
  try {
    statement();
  } catch (std::exception const &e) {
    if (typeid(e) != typeid(E))
      return ::testing::AssertionFailure() << "threw " << typeid(e).name() << ": " << e.what();
    if (message != e.what()) return ::testing::AssertionFailure() << "message was \"" << e.what() << "\"";
    return ::testing::AssertionSuccess();
  } catch (...) {
    return ::testing::AssertionFailure() << "threw something that is not a std::exception";
  }
  return ::testing::AssertionFailure() << "did not throw";
}

}  // namespace quarn::test

#define EXPECT_QUARN_THROW_AS(stmt, Type, message) \
  EXPECT_TRUE(::quarn::test::throwsExactly<Type>([&] { (void)(stmt); }, message))
#define EXPECT_QUARN_THROW(stmt, message) EXPECT_QUARN_THROW_AS(stmt, ::quarn::Exception, message)
