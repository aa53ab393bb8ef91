#pragma once

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// The base of the backends of a contract: an implementation of an interface of platform/ and what
/// a test does to the machine beneath it.
class ContractBackend : NonCopyable {
public:
    virtual ~ContractBackend() = default;
};

/// The promises of an interface as test cases, each of which runs on a new `Backend`.
template <typename Backend>
class Contract : public testing::TestWithParam<std::function<std::unique_ptr<Backend>()>> {
protected:
    std::unique_ptr<Backend> m_backend = this->GetParam()();
};

/// The backend to run the cases on, for INSTANTIATE_TEST_SUITE_P. `arguments` are its
/// constructor's.
template <typename Backend, typename... Arguments>
auto on(Arguments... arguments) {
    return testing::Values([=] { return std::make_unique<Backend>(arguments...); });
}

} // namespace quorvane
