#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tests/xmlarchive/ArchiveTest.h"

namespace {

using namespace std::string_literals;

/// Describes a document event by event: `A='text'` is an element in one event, `A{` the start of one with children
/// (with its text before the brace, if any), `}A` its end, `!16` a false `NextElement` and its code. If `GetText`
/// differs from `GetValue`, it follows after a slash. `#2` is the attribute `Size`, and `C` means a CDATA section.
class ArchiveReadTest : public CArchiveTest {
 protected:
    std::string Events(const std::string& document, std::int32_t blockSize) {
        std::string events;
        Read(
            document,
            [&](CXmlFileArchive& archive) {
                if (archive.SkipProlog() != 0) events += "prolog ";
                for (int ends = 0; ends < 3;) {
                    const bool more = archive.NextElement();
                    ends = more ? 0 : ends + 1;
                    events += (more ? Event(archive) : Failure(archive)) + " ";
                }
            },
            blockSize);
        return events;
    }

 private:
    static std::string Event(CXmlFileArchive& archive) {
        const std::string name(archive.TagName());
        std::string value = "?";
        archive.GetValue(value);
        const std::string text = archive.GetText();
        XmlValue size(std::int32_t{-7});
        std::string event = archive.GetAttribute("Size", size) == 0 ? "#" + std::to_string(size.AsInt32()) : "";
        if (!value.empty() || !text.empty()) event += "='" + value + "'" + (text == value ? "" : "/'" + text + "'");
        switch (archive.ElementState()) {
            case 0:
                return name + (event.empty() ? "=''" : event);
            case XmlState::kHasChildren:
                return name + event + "{";
            case XmlState::kHasSection:
                return name + "C" + event;
            case XmlState::kHasSection | XmlState::kHasChildren:
                return name + "C" + event + "{";
            case XmlState::kEndTag:
                return "}" + name + event;
            default:
                return name + " in state " + std::to_string(archive.ElementState());
        }
    }

    static std::string Failure(CXmlFileArchive& archive) {
        std::string value = "?";
        archive.GetValue(value);
        EXPECT_TRUE(archive.TagName().empty() && archive.ElementState() == 0 && value.empty() &&
                    archive.GetText().empty() && !archive.IsEndTag())
            << "there must be no current element";
        return "!" + std::to_string(static_cast<int>(archive.LastError()));
    }
};

struct CDocument {
    std::string text;
    const char* events;
};

const CDocument kDocuments[] = {
    // The library's own form.
    {"<R><A>1</A><L Size=\"1\"><B/></L></R>", "R{ A='1' L#1='1'/''{ B='' }L }R !0 !0 !0 "},
    {"<?xml version=\"1.0\" ?><R><A></A><B>x</B></R>", "R{ A='' B='x' }R !0 !0 !0 "},
    {"<R><L Size=\"0\"/><M Size=\"2\"><T>1</T><T>2</T></M></R>",
     "R{ L#0='0'/'' M#2='2'/''{ T='1' T='2' }M }R !0 !0 !0 "},
    // Other forms: indentation, blanks in tags, comments, declarations, instructions before the root.
    {"\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!DOCTYPE R [<!ELEMENT R ANY>]>\n<!-- plain -->\n<?go?>\n<R>\n"
     "  <A>\t1 </A>\n  <!-- - -- <B>2</B> --->\n\t<B >x</B >\n</R>\n",
     "R='\n  '{ A='\t1 ' B='x' }R !0 !0 !0 "},
    {"< R >< A / >< B>x</ B ></\tR\n>", "R{ A='' B='x' }R !0 !0 !0 "},
    {"<R><A><!-- note --></A><B>1<!-- n -->2</B></R>", "R{ A{ }A B='1'{ }B }R !0 !0 !0 "},
    {"<R><A k=\"a>b\" Size = \"3\">  x y </A></R>", "R{ A#3='a>b'/'b\" Size = \"3\">x y ' }R !0 !0 !0 "},
    {"<R><A Size=\"2\"> \xFC x</A><A/\xFC></R>", "R{ A#2='2'/'\xFC x' A='' }R !0 !0 !0 "},
    {"<R>text<A/>text</R>text", "R='text'{ A='' }R !0 !0 !0 "},
    {"<a.b>1<c/></a.b>", "a='1'{ c='' !18 !16 !16 "},
    // CDATA sections.
    {"<R><A><![CDATA[a]b]]></A><B>1<![CDATA[<2> ]]]>3<![CDATA[&lt;]]> 4</B></R>",
     "R{ AC='a]b' BC='1<2> ]3< 4'/'1<2> ]3&lt; 4' }R !0 !0 !0 "},
    {"<R><A Size=\"2\">  <![CDATA[  x]]]]><![CDATA[>]]>  y</A></R>", "R{ AC#2='2'/'  x]]>y' }R !0 !0 !0 "},
    {"<R><A><![CDATA[x]]>  y</A></R>", "R{ AC='xy' }R !0 !0 !0 "},
    {"<R><A><![CDATA[a", "R{ !16 !16 !16 "},
    {"<R><A><![CDATA[]]<B/></A></R>", "R{ !16 !16 !16 "},
    {"<R><A><![CDATA x]]></A></R>", "R{ A{ }A }R !0 !0 !0 "},
    // References.
    {"<R><A>&lt;&gt;&amp;&quot;&#252;&#0000000065;&#000000065;</A></R>", "R{ A='<>&\"\xFC&#0000000065;A' }R !0 !0 !0 "},
    {"<R><A>&unknown;&&#;&#x41;&#65&#252;&lt;&amp</A></R>", "R{ A='&unknown;&&#;&#x41;&#65\xFC<&amp' }R !0 !0 !0 "},
    // Not well-formed.
    {"", "!0 !0 !0 "},
    {" \n", "!0 !0 !0 "},
    {"<?xml version=\"1.0\" ?>", "!0 !0 !0 "},
    {"junk<R><A/></R>", "prolog R{ A='' }R !0 !0 !0 "},
    {"<R><A>1</A></B></R>", "R{ A='1' !18 }R !18 !18 !18 "},
    {"</R><A/>", "!18 A='' !18 !18 !18 "},
    {"<R><A>x</B></R>", "R{ A='x' }R !0 !0 !0 "},
    {"<R><A>x/>y</A></R>", "R{ A='x/>'/'' !18 }R !18 !18 !18 "},
    {"<R></R><!-- open", "R='' !19 !19 !19 "},
    {"<R>", "!16 !16 !16 "},
    {"<", "!16 !16 !16 "},
    {"<R><", "!16 !16 !16 "},
    {"<R><A/><", "R{ A='' !17 !17 !17 "},
    {"<R><A/></", "R{ A='' !17 !17 !17 "},
    {"<R><A/></R", "R{ A='' !16 !16 !16 "},
    {"<R><A/>", "R{ A='' !16 !16 !16 "},
    {"<R><A>1</A>", "R{ !16 !16 !16 "},
    {"<R><A/><!-- x", "R{ A='' !19 !19 !19 "},
    {"<R><A/><!-- x --\0><B/></R>"s, "R{ A='' !16 !16 !16 "},
    {"<R><A/></X><!-- x --><B/></R>", "R{ A='' !18 !18 B='' }R !18 !18 !18 "},
    {"<R><A>1</A>\0<B>2</B></R>"s, "R{ !16 !16 !16 "},
    {"<R><A/>\0<B/></R>"s, "R{ A='' !16 !16 !16 "},
    {"<R><A>1</A><\xFC"
     "B>\xFC x\xFC</B\xFC></\xFCR></R>",
     "R{ A='1' B='\xFC x\xFC' }R !18 !18 !18 "},
    {"<R><<B/></R>", "R{ B='' }R !0 !0 !0 "},
    {"<><A/></>", "{ A='' } !0 !0 !0 "},
};

TEST_F(ArchiveReadTest, BlockBoundariesHaveNoEffect) {
    for (const auto& document : kDocuments) {
        const auto size = static_cast<std::int32_t>(document.text.size());
        for (std::int32_t block = size + 1; block > 0; --block)
            EXPECT_EQ(Events(document.text, block), document.events) << document.text << " in blocks of " << block;
    }
}

TEST_F(ArchiveReadTest, CutDocumentsEndWithoutErrorInBlocksOfAnySize) {
    for (const auto& document : kDocuments) {
        for (std::size_t size = 0; size < document.text.size(); ++size) {
            const std::string start = document.text.substr(0, size);
            const std::string whole = Events(start, 4096);
            EXPECT_EQ(Events(start, 1), whole) << start;
            EXPECT_EQ(Events(start, 7), whole) << start;
        }
    }
}

template <class Value>
struct CNumberCase {
    const char* child;
    Value expected;
};

TEST_F(ArchiveReadTest, NumbersAreParsedAsFarAsPossible) {
    const auto expect = [&]<class Value>(Value before, std::initializer_list<CNumberCase<Value>> cases) {
        for (const auto& c : cases) {
            ReadIn(c.child, [&](CXmlFileArchive& archive) {
                for (int twice = 0; twice < 2; ++twice) {
                    Value value = before;
                    archive.GetValue(value);
                    EXPECT_EQ(value, c.expected) << c.child;
                }
            });
        }
    };
    expect(std::int32_t{-9}, {{"<A>12abc</A>", 12},
                              {"<A></A>", -9},
                              {"<A/>", -9},
                              {"<A> </A>", 0},
                              {"<A x=\"4\">5</A>", 4},
                              {"<A x=\"\">5</A>", 0},
                              {"<A><![CDATA[6]]></A>", 6},
                              {"<A>1<B/></A>", 1}});
    expect(false, {{"<A>1</A>", true}, {"<A> 1</A>", true}, {"<A>2</A>", false}, {"<A>true</A>", false}});
    expect(true, {{"<A>2</A>", false}, {"<A>-1</A>", false}, {"<A/>", true}});
    expect(std::uint16_t{9}, {{"<A>65535</A>", 65535}, {"<A>70000</A>", 4464}, {"<A>-1</A>", 65535}});
    expect(std::uint32_t{9}, {{"<A>4294967295</A>", 4294967295U}, {"<A>4294967296</A>", 4294967295U}});
    expect(std::int64_t{9}, {{"<A>-9223372036854775808</A>", std::numeric_limits<std::int64_t>::min()}});
    expect(std::uint64_t{9}, {{"<A>18446744073709551615</A>", std::numeric_limits<std::uint64_t>::max()}});
    expect(9.5, {{"<A>6.25e-002</A>", 0.0625}, {"<A>4.</A>", 4.0}, {"<A></A>", 9.5}, {"<A>-inf</A>", -HUGE_VAL}});
}

TEST_F(ArchiveReadTest, AttributesAreFoundByTheirNames) {
    const auto number = [&](const std::string& child, const char* name) {
        std::string found;
        ReadIn(child, [&](CXmlFileArchive& archive) {
            XmlValue value(std::int32_t{-1});
            const std::int32_t result = archive.GetAttribute(name, value);
            found = std::to_string(value.AsInt32()) + (result == 0 ? "" : " failed");
            EXPECT_TRUE(result == 0 || static_cast<std::uint32_t>(result) == 0x80004005U);
        });
        return found;
    };
    EXPECT_EQ(number("<A Size=\"2\"/>", "Size"), "2");
    EXPECT_EQ(number("<A x=\"1\"  Size=\"2\" y=\"3\">4</A>", "Size"), "2");
    EXPECT_EQ(number("<A x=\"Size\" Size = \"2\">4</A>", "Size"), "2");
    EXPECT_EQ(number("<A Sizes=\"1\" size=\"2\">3</A>", "Size"), "-1 failed");
    EXPECT_EQ(number("<A Size=''>\"3\"</A>", "Size"), "3");  // only double quotes delimit
    EXPECT_EQ(number("<A>Size=\"3\"</A>", "Size"), "-1 failed");
    EXPECT_EQ(number("<A Size>1</A>", "Size"), "-1 failed");
    EXPECT_EQ(number("<A x=\"1>1</A>", "Size"), "-1 failed");

    ReadIn("<A x=\"a&lt;\" y=\"2.5\">text</A>", [](CXmlFileArchive& archive) {
        XmlValue text("");
        EXPECT_EQ(archive.GetAttribute("x", text), 0);
        EXPECT_STREQ(text.AsText(), "a<");
        XmlValue real(0.0);
        EXPECT_EQ(archive.GetAttribute("y", real), 0);
        EXPECT_EQ(real.AsDouble(), 2.5);
        std::string behind;
        archive.GetValue(behind);
        EXPECT_EQ(behind, "text") << "the attributes are skipped";
    });
    const std::string largest =
        "a=\"65535\" b=\"4294967295\" c=\"-9223372036854775808\" d=\"18446744073709551615\" e=\"1\"";
    ReadIn("<A " + largest + "/>", [](CXmlFileArchive& archive) {
        const auto read = [&](const char* name, XmlValue value) {
            EXPECT_EQ(archive.GetAttribute(name, value), 0);
            return value;
        };
        EXPECT_EQ(read("a", std::uint16_t{0}).AsUInt16(), 65535U);
        EXPECT_EQ(read("b", std::uint32_t{0}).AsUInt32(), 4294967295U);
        EXPECT_EQ(read("c", std::int64_t{0}).AsInt64(), std::numeric_limits<std::int64_t>::min());
        EXPECT_EQ(read("d", std::uint64_t{0}).AsUInt64(), std::numeric_limits<std::uint64_t>::max());
        EXPECT_TRUE(read("e", false).AsBool());
    });
}

TEST_F(ArchiveReadTest, SamplesEndAtTheirSemicolons) {
    const auto samples = [&](const std::string& child, std::size_t size) {
        std::vector<double> values(size, -1);
        ReadIn(child, [&](CXmlFileArchive& archive) { archive.GetSamples(values); });
        return values;
    };
    EXPECT_EQ(samples("<A>1;2;3;</A>", 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(samples("<A>1;2</A>", 3), (std::vector<double>{1, -1, -1}));
    EXPECT_EQ(samples("<A>;x;1e-05;-0.125 ;</A>", 5), (std::vector<double>{0, 0, 1e-05, -0.125, -1}));
    EXPECT_EQ(samples("<A><![CDATA[1;]]>2;</A>", 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(samples("<A>1&#48;&#059;2;</A>", 2), (std::vector<double>{10, 2}));
    EXPECT_EQ(samples("<A/>", 1), (std::vector<double>{-1}));
}

TEST_F(ArchiveReadTest, ListsTogetherNeverExceedTheSizeOfTheFile) {
    const auto sizes = [&](const std::string& document) {
        std::vector<std::size_t> granted;
        Read(document, [&](CXmlFileArchive& archive) {
            while (archive.NextElement()) {
                if (!archive.IsEndTag() && archive.TagName() == "L") granted.push_back(archive.GetListSize());
            }
        });
        return granted;
    };
    const std::string honest = "<L Size=\"2\"><T>1</T><T>2</T></L><L Size=\"3\"><A>1;2;3;</A></L><L/><L Size=\"-5\"/>";
    const auto found = sizes("<R><L Size=\"2147483647\"/>" + honest + honest + "</R>");
    EXPECT_EQ((std::vector<std::size_t>(found.begin() + 1, found.end())),
              (std::vector<std::size_t>{2, 3, 0, 0, 2, 3, 0, 0}))
        << "a list with a wrong size doesn't affect the others";

    for (const char* const claim : {"2147483647", "1000", "100"}) {
        std::string document = "<R>";
        for (int i = 0; i < 300; ++i)
            document += "<L Size=\"" + std::string(claim) + "\"/>";
        std::size_t sum = 0;
        for (const std::size_t size : sizes(document + "</R>"))
            sum += size;
        EXPECT_LE(sum, document.size() + 4);
        EXPECT_GT(sum, 0U);
    }
    const auto cut = sizes("<R><L Size=\"2147483647\"/>" + std::string(1, '\0') + std::string(100'000, ' '));
    EXPECT_LT(cut.at(0), 100U) << "bytes after a NUL aren't part of the document";
}

TEST_F(ArchiveReadTest, DeepAndLongDocumentsTakeLinearTime) {
    constexpr int kDepth = 1'000'000;
    std::string deep;
    for (int i = 0; i < kDepth; ++i)
        deep += "<a>";
    for (int i = 0; i < kDepth; ++i)
        deep += "</a>";
    Read(deep, [&](CXmlFileArchive& archive) {
        int starts = 0;
        int ends = 0;
        while (archive.NextElement())
            ++(archive.IsEndTag() ? ends : starts);
        EXPECT_EQ(starts, kDepth);  // the innermost is one event
        EXPECT_EQ(ends, kDepth - 1);
        EXPECT_EQ(archive.LastError(), XmlError::None);
    });

    for (const char* const filler : {" ", "x", ">", "<", "]", "-", "&", "\"", "\xFC", "<!", "/>"}) {
        std::string long_ = "<R><A>";
        while (long_.size() < 2'000'000)
            long_ += filler;
        Read(long_, [&](CXmlFileArchive& archive) {
            int events = 0;
            while (archive.NextElement())
                ++events;
            EXPECT_LE(events, 2) << filler;
        });
    }
}

}  // namespace
