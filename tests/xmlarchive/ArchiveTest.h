#pragma once

#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "tests/support/TempFolder.h"

using gd_xml_stream::CFileBuffer;
using gd_xml_stream::kLoad;
using gd_xml_stream::kStore;
using gd_xml_stream::XmlError;
using gd_xml_stream::XmlState;
using gd_xml_stream::XmlValue;

/// Tests that write documents and read them, in blocks of any size.
class CArchiveTest : public testing::Test {
 protected:
    /// Returns the bytes that `save(archive)` writes.
    template <class Save>
    std::string Written(Save save, std::int32_t blockSize = 4096) {
        CFileBuffer file;
        EXPECT_EQ(file.Open(m_path, "wb"), 0);
        {
            CXmlFileArchive archive(&file, kStore, blockSize);
            save(archive);
        }
        file.Close();
        return ReadAll(m_path);
    }

    /// Opens a document for `load(archive)`.
    template <class Load>
    void Read(const std::string& document, Load load, std::int32_t blockSize = 4096) {
        WriteAll(m_path, document);
        CFileBuffer file;
        ASSERT_EQ(file.Open(m_path, "r"), 0);
        CXmlFileArchive archive(&file, kLoad, blockSize);
        load(archive);
    }

    /// The same, at the first child of the root `R`.
    template <class Load>
    void ReadIn(const std::string& child, Load load) {
        Read("<R>" + child + "</R>", [&](CXmlFileArchive& archive) {
            archive.SkipProlog();
            ASSERT_TRUE(archive.NextElement());
            ASSERT_TRUE(archive.NextElement()) << child;
            load(archive);
        });
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("document.xml");
};
