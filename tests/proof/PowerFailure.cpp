#include "PowerFailure.h"
#include "support/TestHeaders.h"

namespace {

struct DiskFile {
    std::string safe;                 // flushed
    std::string base;                 // programs read this,
    std::vector<std::string> pieces;  // followed by the writes since the last flush

    std::string content() const {
        std::string all = base;
        for (const std::string& piece : pieces) all += piece;
        return all;
    }
};

using Disk = std::map<std::string, DiskFile>;

Disk diskOf(const DiskContents& contents) {
    Disk disk;
    for (const auto& [path, content] : contents) disk[path] = {content, content, {}};
    return disk;
}

void apply(Disk& disk, const FileOperation& operation) {
    DiskFile& file = disk[operation.path];
    switch (operation.kind) {
        case FileOperation::Create:
            file.base.clear();
            file.pieces.clear();
            break;
        case FileOperation::Write:
            file.pieces.push_back(operation.data);
            break;
        case FileOperation::Flush:
            file.base = file.content();
            file.safe = file.base;
            file.pieces.clear();
            break;
        case FileOperation::Move:
            disk[operation.data] = std::exchange(file, {});
            disk.erase(operation.path);
            break;
        case FileOperation::Delete:
            disk.erase(operation.path);
            break;
    }
}

std::string garbage(std::size_t size) {
    std::string bytes(size, '\0');
    unsigned number = 1;
    for (char& byte : bytes) {
        number = number * 1103515245 + 12345;
        byte = static_cast<char>(number >> 16);
    }
    return bytes;
}

// The content with one piece replaced.
std::string withPiece(DiskFile file, std::size_t index, std::string piece) {
    file.pieces[index] = std::move(piece);
    return file.content();
}

// Calls visit(loss, content) for everything that a power failure can leave of a file.
template <typename Visit>
void forEachLoss(const DiskFile& file, Visit visit) {
    const std::string all = file.content();
    const std::size_t open = all.size() - file.base.size();
    visit(kLossKept, all);
    visit(kLossGone, file.safe);
    visit(kLossHalf, all.substr(0, file.base.size() + open / 2));
    visit(kLossZeros, file.base + std::string(open, '\0'));
    visit(kLossGarbage, file.base + garbage(open));
    for (std::size_t i = 0; i + 1 < file.pieces.size(); ++i) {
        const std::size_t size = file.pieces[i].size();
        visit(kLossEarlier, withPiece(file, i, std::string(size, '\0')));
        visit(kLossEarlier, withPiece(file, i, garbage(size)));
    }
}

using Losses = std::set<std::string>;

// The losses that can leave `path` with neither its old content nor `after`.
Losses harmfulLosses(const std::vector<FileOperation>& operations, const DiskContents& before,
                     const std::string& path, const std::string& after) {
    Losses harmful;
    const auto judge = [&](const Disk& disk) {
        const auto found = disk.find(path);
        if (found == disk.end()) {
            harmful.insert("there is no file");
            return;
        }
        forEachLoss(found->second, [&](const char* loss, const std::string& left) {
            if (left != before.at(path) && left != after) harmful.insert(loss);
        });
    };
    Disk disk = diskOf(before);
    judge(disk);
    for (const FileOperation& operation : operations) {
        apply(disk, operation);
        judge(disk);
    }
    return harmful;
}

// The content of the file when the power does not fail.
std::string contentAfter(const std::vector<FileOperation>& operations, const DiskContents& before,
                         const std::string& path) {
    Disk disk = diskOf(before);
    for (const FileOperation& operation : operations) apply(disk, operation);
    return disk.at(path).content();
}

std::vector<FileOperation> withoutFlushes(std::vector<FileOperation> operations) {
    operations.erase(std::remove_if(operations.begin(), operations.end(),
                                    [](const FileOperation& operation) {
                                        return operation.kind == FileOperation::Flush;
                                    }),
                     operations.end());
    return operations;
}

}  // namespace

void expectOldOrNew(const std::vector<FileOperation>& operations, const DiskContents& before,
                    const std::string& path, const std::string& after) {
    ASSERT_TRUE(contentAfter(operations, before, path) == after);
    EXPECT_EQ(harmfulLosses(operations, before, path, after), Losses{});
    EXPECT_EQ(harmfulLosses(withoutFlushes(operations), before, path, after),
              (Losses{kLossGone, kLossHalf, kLossZeros, kLossGarbage}));
}
