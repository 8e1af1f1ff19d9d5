// Test module: returns a document template that records its calls into the
// log argument 1 points to.
#include <cstdint>

#include "test_modules.h"
#include "vanto/module.h"

namespace {
class Template : public VntDocTemplate {
public:
    explicit Template(TestTemplateLog* log) : log_(log) { ++log_->created; }
    VntDocTemplate* OpenNewDocument() override {
        ++log_->opened;
        log_->openDocuments = true;
        return this;
    }
    bool HasOpenDocuments() override { return log_->openDocuments; }
    void RemoveFromApp() override { ++log_->removed; }
    void Destroy() override {
        ++log_->destroyed;
        delete this;
    }

private:
    TestTemplateLog* log_;
};
}  // namespace

VNT_APP_MODULE_EXPORT std::intptr_t ModMain(long a1, long) {
    return reinterpret_cast<std::intptr_t>(new Template(reinterpret_cast<TestTemplateLog*>(a1)));
}
