#include "Floor.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/parse_options.hpp>
#include <boost/json/value.hpp>

#include <zip.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>

namespace refdoc::bench {
namespace {

namespace fs = std::filesystem;

// The parse the library makes of every file: default options, a fresh arena with a first block
// of 1 KiB, the tree released with the arena.
void parseInto(FloorResult& result, const std::string& bytes) {
    boost::json::monotonic_resource arena(1024);
    const boost::json::value root = boost::json::parse(bytes, &arena, boost::json::parse_options{});
    result.values += root.as_object().size();
    result.bytes += bytes.size();
    ++result.files;
}

std::string readFile(const fs::path& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        throw std::runtime_error("floor: cannot open " + path.string());
    }
    struct stat info {};
    std::string bytes;
    if (::fstat(fd, &info) == 0) {
        bytes.resize(static_cast<std::size_t>(info.st_size));
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(fd, bytes.data() + done, bytes.size() - done);
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    ::close(fd);
    if (done != bytes.size()) {
        throw std::runtime_error("floor: cannot read " + path.string());
    }
    return bytes;
}

struct ArchiveCloser {
    void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
};
struct EntryCloser {
    void operator()(zip_file_t* file) const noexcept { zip_fclose(file); }
};

std::string readEntry(zip_t* archive, const std::string& name, const fs::path& package) {
    const zip_int64_t index = zip_name_locate(archive, name.c_str(), 0);
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (index < 0 || zip_stat_index(archive, static_cast<zip_uint64_t>(index), 0, &stat) != 0) {
        throw std::runtime_error("floor: no entry " + name + " in " + package.string());
    }
    const std::unique_ptr<zip_file_t, EntryCloser> file(zip_fopen_index(archive, static_cast<zip_uint64_t>(index), 0));
    std::string bytes(static_cast<std::size_t>(stat.size), '\0');
    if (!file || zip_fread(file.get(), bytes.data(), bytes.size()) != static_cast<zip_int64_t>(bytes.size())) {
        throw std::runtime_error("floor: cannot read " + name + " in " + package.string());
    }
    return bytes;
}

} // namespace

void readEach(const fs::path& root, const std::vector<FileRead>& reads,
              const std::function<void(const FileRead&, std::string&&)>& use) {
    // The reads are sorted, so the entries of one package follow each other.
    std::unique_ptr<zip_t, ArchiveCloser> archive;
    std::string openPackage;
    for (const auto& read : reads) {
        const fs::path path = root / read.file;
        if (read.entry.empty()) {
            use(read, readFile(path));
            continue;
        }
        if (!archive || openPackage != read.file) {
            int error = 0;
            archive.reset(zip_open(path.c_str(), ZIP_RDONLY, &error));
            if (!archive) {
                throw std::runtime_error("floor: cannot open " + path.string());
            }
            openPackage = read.file;
        }
        use(read, readEntry(archive.get(), read.entry, path));
    }
}

FloorResult readAndParse(const fs::path& root, const std::vector<FileRead>& reads) {
    FloorResult result;
    readEach(root, reads, [&result](const FileRead&, std::string&& bytes) { parseInto(result, bytes); });
    return result;
}

FloorResult readAndParse(const fs::path& root, const std::vector<std::string>& files) {
    FloorResult result;
    for (const auto& file : files) {
        parseInto(result, readFile(root / file));
    }
    return result;
}

} // namespace refdoc::bench
