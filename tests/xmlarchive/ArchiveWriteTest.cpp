#include <limits>
#include <string>

#include "tests/xmlarchive/ArchiveTest.h"

namespace {

class ArchiveWriteTest : public CArchiveTest {
 protected:
    /// Returns the text of an element `A` with this value.
    std::string Value(const XmlValue& value) {
        const std::string text =
            Written([&](CXmlFileArchive& archive) { archive.OpenChild("A").PutValue(value).CloseElement(); });
        EXPECT_TRUE(text.starts_with("<A>") && text.ends_with("</A>")) << text;
        return text.substr(3, text.size() - 7);
    }
};

TEST_F(ArchiveWriteTest, ElementsHaveTheirShortestForm) {
    const auto text = [&](auto save) { return Written(save); };
    using Archive = CXmlFileArchive;
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").CloseElement(); }), "<A/>");
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").PutValue(7).CloseElement(); }), "<A>7</A>");
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").PutValue("").CloseElement(); }), "<A></A>");
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").OpenChild("B").CloseElement().CloseElement(); }), "<A><B/></A>");
    EXPECT_EQ(
        text([](Archive& a) { a.OpenChild("A").PutAttribute("Size", 2).OpenChild("B").CloseElement().CloseElement(); }),
        "<A Size=\"2\"><B/></A>");
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").PutAttribute("x", "<\xFC\"").CloseElement(); }),
              "<A x=\"&lt;&#252;&quot;\"/>");
    EXPECT_EQ(text([](Archive& a) { a.OpenChild("A").PutValue("x").OpenChild("B").CloseElement().CloseElement(); }),
              "<A>x<B/></A>");
    EXPECT_EQ(text([](Archive& a) { a.CloseElement().OpenChild("A").CloseElement().CloseElement(); }), "<A/>");
    EXPECT_EQ(text([](Archive& a) { a.WriteDeclaration("version=\"1.0\""); }), "<?xml version=\"1.0\" ?>");
}

TEST_F(ArchiveWriteTest, EachTypeHasItsText) {
    EXPECT_EQ(Value(-5), "-5");
    EXPECT_EQ(Value(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(Value(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(Value(std::uint32_t{4294967295U}), "4294967295");
    EXPECT_EQ(Value(std::uint16_t{65535}), "65535");
    EXPECT_EQ(Value(true) + Value(false), "10");
    EXPECT_EQ(Value(0.5), "0.5");
    EXPECT_EQ(Value("a<b>\"&'\t\n"), "a&lt;b&gt;&quot;&amp;'\t\n");
    EXPECT_EQ(Value(std::string("Gr\xFCn\x80\xFF ")), "Gr&#252;n&#128;&#255; ");
    EXPECT_EQ(Value(std::string("cut\0off", 7)), "cut");
}

TEST_F(ArchiveWriteTest, SamplesHaveSixDigitsAndASemicolonEach) {
    const auto samples = [&](std::vector<double> values) {
        return Written([&](CXmlFileArchive& archive) { archive.OpenChild("A").PutSamples(values).CloseElement(); });
    };
    EXPECT_EQ(samples({0.5, 0.25, -0.125}), "<A>0.5;0.25;-0.125;</A>");
    EXPECT_EQ(samples({0.123456789, 1e-5, 1234567, -0.0}), "<A>0.123457;1e-05;1.23457e+06;-0;</A>");
    EXPECT_EQ(samples({}), "<A></A>");
}

void SaveSomething(CXmlFileArchive& archive) {
    archive.WriteDeclaration("version=\"1.0\"").OpenChild("R");
    for (int i = 0; i < 5; ++i) {
        archive.OpenChild("List").PutAttribute("Size", i);
        for (int k = 0; k < i; ++k)
            archive.OpenChild("Entry").PutValue(std::string(static_cast<std::size_t>(k * 7), '\xB5')).CloseElement();
        archive.CloseElement();
        archive.FlushPending();
    }
    archive.OpenChild("Ave").PutSamples({1e10, -2.5, 3}).CloseElement().CloseElement();
}

TEST_F(ArchiveWriteTest, BlockBoundariesHaveNoEffect) {
    const std::string whole = Written(SaveSomething);
    for (std::int32_t block = 1; block <= static_cast<std::int32_t>(whole.size()) + 1; ++block)
        ASSERT_EQ(Written(SaveSomething, block), whole) << "in blocks of " << block;
    EXPECT_EQ(Written(SaveSomething, 0), whole);
    EXPECT_EQ(Written(SaveSomething, -5), whole);

    unsigned char buffer[33];
    CFileBuffer file;
    ASSERT_EQ(file.Open(m_path, "wb"), 0);
    CXmlFileArchive archive(&file, kStore, sizeof buffer, buffer);
    SaveSomething(archive);
    archive.FlushBuffer();
    EXPECT_EQ(ReadAll(m_path), whole) << "everything is written while the file is still open";
    archive.OpenChild("lost");
    archive.Detach();
}

TEST_F(ArchiveWriteTest, WrittenTextsAreReadBackUnchanged) {
    std::string text;
    for (int byte = 1; byte < 256; ++byte)
        text += static_cast<char>(byte);
    for (const std::string& value : {text, std::string(" "), std::string("  x  "), std::string("]]>&lt;&#65;"),
                                     std::string(1000, '\xFF'), std::string()}) {
        const std::string document = Written([&](CXmlFileArchive& archive) {
            archive.OpenChild("R").OpenChild("A").PutValue(value).CloseElement().CloseElement();
        });
        Read(document, [&](CXmlFileArchive& archive) {
            archive.NextElement();
            archive.NextElement();
            std::string back = "x";
            archive.GetValue(back);
            EXPECT_EQ(back, value);
            EXPECT_EQ(archive.GetText(), value);
        });
    }
}

TEST_F(ArchiveWriteTest, OperationsOfTheOtherDirectionDoNothing) {
    EXPECT_EQ(Written([](CXmlFileArchive& archive) {
                  EXPECT_FALSE(archive.NextElement());
                  archive.SkipProlog();
                  archive.OpenChild("A").CloseElement();
              }),
              "<A/>");
    Read("<A><B/></A>", [](CXmlFileArchive& archive) {
        SaveSomething(archive);
        archive.FlushBuffer();
        EXPECT_TRUE(archive.NextElement());
        archive.Detach();
        EXPECT_FALSE(archive.NextElement());
    });
    EXPECT_EQ(ReadAll(m_path), "<A><B/></A>");
    CXmlFileArchive nowhere(nullptr, kStore, 16);
    SaveSomething(nowhere);
}

TEST_F(ArchiveWriteTest, FailureToOpenReturnsTheReason) {
    CFileBuffer file;
    char text[6] = "?????";
    EXPECT_EQ(file.Open(m_folder.Path("no/such/file"), "r", text, sizeof text), ENOENT);
    EXPECT_EQ(std::string(text).size(), 5U) << "cut to the size of the buffer";
    EXPECT_NE(file.Open(m_folder.Path("no/such/file"), "wb"), 0);
    EXPECT_NE(file.Open(m_folder.Path(""), "r"), 0) << "a folder";
    std::size_t read = 1;
    EXPECT_EQ(file.Read(text, 3, read) + read + file.Write("abc", 3), 0U) << "nothing is open";
    file.Flush();
    file.Close();

    EXPECT_EQ(file.Open(m_path, "wb"), 0);
    const std::string large(200'000, 'x');
    EXPECT_EQ(file.Write("ab", 2) + file.Write(large.data(), large.size()) + file.Write("c", 1), large.size() + 3);
    EXPECT_EQ(file.Open(m_folder.Path("next"), "wb"), 0) << "after it has closed the first";
    EXPECT_EQ(ReadAll(m_path), "ab" + large + "c");
    EXPECT_EQ(file.Open(m_path, "r"), 0);
    EXPECT_EQ(file.Write("d", 1), 0U) << "open for reading";
    std::string back(large.size() + 9, '?');
    EXPECT_EQ(file.Read(back.data(), back.size(), read), large.size() + 3);
    EXPECT_EQ(back.substr(0, read), "ab" + large + "c");
}

}  // namespace
