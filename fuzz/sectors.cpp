// Makes a list of calls on a file of blocks, and compares with the same calls on blocks in memory.
#include <algorithm>
#include <array>
#include <vector>

#include "fuzz/Fuzz.h"
#include "vxfileio/export/compound/SectorFile.h"

using vxfileio::compound::SectorFile;

namespace {

using Block = std::array<std::byte, SectorFile::kBlockSize>;

Block BlockOf(std::uint8_t seed) {
    Block block{};
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<std::byte>(seed + i);
    return block;
}

/// The expected blocks, and the file.
class CBothFiles {
 public:
    CBothFiles() { Require(m_file.Create(m_path), "the file can be made"); }

    void Call(CCalls& calls) {
        const std::uint8_t call = calls.Byte();
        const std::uint32_t a = calls.Byte() % kMostBlocks;
        const std::uint32_t b = calls.Byte() % kMostBlocks;
        const Block block = BlockOf(calls.Byte());
        const bool bothThere = a < m_blocks.size() && b < m_blocks.size();
        switch (call % 6) {
            case 0:
                Require(m_file.Write(a, block), "a block can be written");
                At(a) = block;
                break;
            case 1: {
                const std::vector<std::byte> run(a * block.size(), block[0]);
                const std::size_t cut = std::min(a, b) * block.size();  // the run is written in two parts
                const std::array parts{vxfileio::helpers::CBytes(run).first(cut),
                                       vxfileio::helpers::CBytes(run).subspan(cut)};
                Require(m_file.WriteRun(b, parts), "blocks can be written");
                for (std::uint32_t i = 0; i < a; ++i)
                    At(b + i).fill(block[0]);
                break;
            }
            case 2:
                Require(m_file.Insert(a, block), "a block can be inserted");
                if (a >= m_blocks.size()) {
                    At(a) = block;
                } else {
                    m_blocks.insert(m_blocks.begin() + a, block);
                }
                break;
            case 3:
                Require(m_file.Swap(a, b) == bothThere, "blocks can be swapped if they are there");
                if (bothThere) std::swap(m_blocks[a], m_blocks[b]);
                break;
            case 4:
                Require(m_file.Move(a, b) == bothThere, "a block can be moved if it is there");
                if (bothThere) Move(a, b);
                break;
            default:
                Require(m_file.Open(m_path, SectorFile::kRead | SectorFile::kWrite), "the file opens again");
                Require(m_file.ByteSize() == m_blocks.size() * block.size(), "it has all its bytes");
        }
    }

    void Check() const {
        Require(m_file.BlockCount() == m_blocks.size(), "the number of blocks");
        Block block{};
        for (std::uint32_t i = 0; i < m_blocks.size(); ++i)
            Require(m_file.Read(i, block) && block == m_blocks[i], "a block");
        Require(!m_file.Read(m_file.BlockCount(), block), "none after the last");
    }

 private:
    static constexpr std::uint32_t kMostBlocks = 16;

    Block& At(std::size_t index) {
        m_blocks.resize(std::max(m_blocks.size(), index + 1));
        return m_blocks[index];
    }

    void Move(std::uint32_t from, std::uint32_t to) {
        const Block block = m_blocks[from];
        m_blocks.erase(m_blocks.begin() + from);
        m_blocks.insert(m_blocks.begin() + to, block);
    }

    std::string m_path = CFuzzFolder::Path("blocks");
    SectorFile m_file;
    std::vector<Block> m_blocks;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostCalls = 30;
    CCalls calls(Input(data, size));
    CBothFiles files;
    for (int i = 0; i < kMostCalls && !calls.AtEnd(); ++i)
        files.Call(calls);
    files.Check();
    return 0;
}
