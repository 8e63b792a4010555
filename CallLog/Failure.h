// The module's boundary towards a process that must not die: an exception of the standard library
// becomes the result that stands for a failure.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <utility>

namespace NS_CALLLOG {

// What `operation` gives; `failure` when it ends with an exception: memory ran out, or the platform
// threw what it must not.
template <class Result, class Operation>
Result OrFailure(Result failure, const Operation& operation) {
  try {
    return operation();
  } catch (const std::exception&) {
    return failure;
  }
}

template <class Operation>
void IgnoreFailure(const Operation& operation) {
  try {
    operation();
  } catch (const std::exception&) {
  }
}

// What an operation of the model gives; `failure` also when there is no model.
template <class Result, class Model, class Operation, class... Arguments>
Result Ask(const std::unique_ptr<Model>& model, Result failure, Operation operation,
           Arguments&&... arguments) {
  if (model == nullptr) return failure;
  return OrFailure(std::move(failure), [&]() -> Result {
    return std::invoke(operation, *model, std::forward<Arguments>(arguments)...);
  });
}

// The same for an operation whose result nobody asks for.
template <class Model, class Operation, class... Arguments>
void Tell(const std::unique_ptr<Model>& model, Operation operation, Arguments&&... arguments) {
  if (model == nullptr) return;
  IgnoreFailure([&] { std::invoke(operation, *model, std::forward<Arguments>(arguments)...); });
}

}  // namespace NS_CALLLOG
