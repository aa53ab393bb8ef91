// A clang-tidy plug-in that limits the checks to our own code. System headers are most of each
// translation unit, and nothing is reported there.

#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/AST/Decl.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class OwnCodeConsumer : public clang::ASTConsumer {
public:
    void HandleTranslationUnit(clang::ASTContext& context) override {
        const clang::SourceManager& files = context.getSourceManager();
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
            // A library's macro that is used in our code counts as our code.
            const clang::SourceLocation at = files.getExpansionLoc(declaration->getLocation());
            if (at.isValid() && !files.isInSystemHeader(at)) {
                own.push_back(declaration);
            }
        }
        context.setTraversalScope(own);
    }
};

class Plugin : public clang::PluginASTAction {
public:
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& /*compiler*/,
                                                          llvm::StringRef /*file*/) override {
        return std::make_unique<OwnCodeConsumer>();
    }

    bool ParseArgs(const clang::CompilerInstance& /*compiler*/,
                   const std::vector<std::string>& /*arguments*/) override {
        return true;
    }

    ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<Plugin> registration("own-code-only",
                                                              "limits the checks to our own code");

} // namespace
