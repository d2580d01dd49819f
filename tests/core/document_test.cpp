#include "base/files.h"
#include "core/document.h"
#include "core/services.h"
#include "core/user_prompt.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct TextDocument final : CDocument {
    using CDocument::CDocument;
    void DeleteContents() override { text.clear(); }
    bool Load(ByteSpan file) override {
        text = AsText(file);
        return text != "bad";
    }
    Bytes Store() override { return {text.begin(), text.end()}; }
    std::string text;
};

TEST(Document, OpensSavesAndTellsWhatFails) {
    const test::TempFolder folder;
    ScriptedPrompt prompt;
    Services services;
    services.prompt = &prompt;
    CDocTemplate docTemplate(services, str::kDocIcl, [](Services& given) -> std::unique_ptr<CDocument> {
        return std::make_unique<TextDocument>(given);
    });
    EXPECT_EQ(docTemplate.GetDocString(DocString::DocName), "Library ");
    EXPECT_EQ(docTemplate.GetDocString(DocString::FilterExtension), ".icl");
    EXPECT_EQ(docTemplate.GetDocString(DocString::WindowTitle), "");

    const auto path = folder.File("a.txt", "one");
    auto* document = dynamic_cast<TextDocument*>(docTemplate.OpenDocumentFile(path));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->text, "one");
    EXPECT_EQ(document->GetTitle(), "a.txt");
    document->text = "two";
    document->SetModifiedFlag();
    EXPECT_TRUE(document->OnSaveDocument(path));
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(FileSize(path), 3u);

    document->SetModifiedFlag();
    EXPECT_FALSE(document->OnSaveDocument(folder.Path("no/such/folder.txt")));
    EXPECT_TRUE(document->IsModified());
    EXPECT_TRUE(prompt.TakeTexts()[0].starts_with("Vantrel Pelorin|Unable to save the file \""));
    EXPECT_EQ(docTemplate.OpenDocumentFile(folder.Path("missing.txt")), nullptr);
    EXPECT_TRUE(prompt.TakeTexts()[0].starts_with("Vantrel Pelorin|Unable to read the file \""));
    EXPECT_EQ(docTemplate.OpenDocumentFile(folder.File("bad.txt", "bad")), nullptr);
    EXPECT_EQ(docTemplate.GetDocuments().size(), 1u);

    EXPECT_EQ(docTemplate.OpenDocumentFile({})->GetTitle(), "Library 1");
    EXPECT_EQ(docTemplate.OpenDocumentFile({})->GetTitle(), "Library 2");
    docTemplate.RemoveDocument(document);
    EXPECT_EQ(docTemplate.GetDocuments().size(), 2u);

    CDocTemplate image(services, 109, nullptr); // a kind without a text in the table, and without documents here
    EXPECT_EQ(image.OpenDocumentFile(path), nullptr);
    EXPECT_EQ(prompt.Shown().back().number, str::kDocumentKindAbsent);
}

} // namespace
} // namespace pelorin
