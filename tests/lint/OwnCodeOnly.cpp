// A clang-tidy plug-in: its checks walk over what is written here, and not over the libraries'
// headers as well, which is most of the way in every file and where nothing is ever reported.

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

class Narrower : public clang::ASTConsumer {
public:
    void HandleTranslationUnit(clang::ASTContext& context) override {
        const clang::SourceManager& files = context.getSourceManager();
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
            // A macro of a library's, spelled out here, is here.
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
        return std::make_unique<Narrower>();
    }

    bool ParseArgs(const clang::CompilerInstance& /*compiler*/,
                   const std::vector<std::string>& /*arguments*/) override {
        return true;
    }

    ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<Plugin>
    registration("own-code-only", "narrows what is walked over to what is written here");

} // namespace
