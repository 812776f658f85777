#include "files/Hdf5Library.h"

#include <hdf5.h>

#include <QFile>
#include <algorithm>
#include <iterator>

namespace {

constexpr int BlockEdge = 256;       // 512 KiB of doubles, half of what readers keep at hand
constexpr unsigned Compression = 4;  // more costs time and gains next to nothing for doubles
constexpr std::size_t GrowthBytes = 4 << 20;

using Close = herr_t (*)(hid_t);

/// Something of the library's that is closed at the end.
template <Close close>
class Handle {
  public:
    explicit Handle(hid_t id) : m_id(id) {}
    ~Handle() {
        if (isGood()) {
            close(m_id);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool isGood() const { return m_id >= 0; }
    operator hid_t() const { return m_id; }  // NOLINT: the library takes it everywhere

  private:
    hid_t m_id;
};
using FileHandle = Handle<H5Fclose>;
using Object = Handle<H5Oclose>;
using Dataset = Handle<H5Dclose>;
using Attribute = Handle<H5Aclose>;
using Space = Handle<H5Sclose>;
using Type = Handle<H5Tclose>;
using Properties = Handle<H5Pclose>;

/// Failures are told by our own texts; the library would print its own.
void silence() {
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

hid_t makeInMemory() {
    silence();
    const Properties access(H5Pcreate(H5P_FILE_ACCESS));
    const Properties creation(H5Pcreate(H5P_FILE_CREATE));
    H5Pset_fapl_core(access, GrowthBytes, false);
    H5Pset_libver_bounds(access, H5F_LIBVER_V18, H5F_LIBVER_V18);
    H5Pset_obj_track_times(creation, false);
    return H5Fcreate("results", H5F_ACC_TRUNC, creation, access);
}

hid_t openToRead(const QString& fileName) {
    silence();
    const Properties access(H5Pcreate(H5P_FILE_ACCESS));
#if H5_VERSION_GE(1, 10, 7)
    H5Pset_file_locking(access, false, true);  // some file systems have none
#endif
    return H5Fopen(QFile::encodeName(fileName).constData(), H5F_ACC_RDONLY, access);
}

hid_t textType(std::size_t bytes) {
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, bytes);
    H5Tset_cset(type, H5T_CSET_UTF8);
    H5Tset_strpad(type, bytes == H5T_VARIABLE ? H5T_STR_NULLTERM : H5T_STR_NULLPAD);
    return type;
}

std::vector<hsize_t> sizesOf(const QVector<int>& extents) {
    std::vector<hsize_t> sizes;
    std::transform(extents.begin(), extents.end(), std::back_inserter(sizes),
                   [](int extent) { return static_cast<hsize_t>(extent); });
    return sizes;
}

class FileInMemory : public Hdf5Library::Writer {
  public:
    void group(const QString& path) override;
    void attribute(const QString& path, const char* name, const QString& value) override;
    void attribute(const QString& path, const char* name, const QStringList& values) override;
    void attribute(const QString& path, const char* name, int value) override;
    void number(const QString& path, int value) override;
    void text(const QString& path, const QString& value) override;
    void array(const QString& path, const std::vector<double>& values,
               const QVector<int>& extents) override;
    void array(const QString& path, const std::vector<quint8>& values,
               const QVector<int>& extents) override;
    bool finish(const std::function<bool(const char* bytes, qint64 size)>& take) override;

  private:
    void writeAttribute(const QString& path, const char* name, hid_t type, hid_t space,
                        const void* value);
    void writeDataset(const QString& path, hid_t type, hid_t space, hid_t memoryType,
                      const void* values, hid_t creation);
    void writeArray(const QString& path, hid_t type, hid_t memoryType, const void* values,
                    const QVector<int>& extents);

    FileHandle m_id{makeInMemory()};
    bool m_good = m_id.isGood();
};

void FileInMemory::writeAttribute(const QString& path, const char* name, hid_t type, hid_t space,
                                  const void* value) {
    const Object object(H5Oopen(m_id, path.toUtf8().constData(), H5P_DEFAULT));
    const Attribute attribute(H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT));
    m_good = m_good && H5Awrite(attribute, type, value) >= 0;
}

void FileInMemory::writeDataset(const QString& path, hid_t type, hid_t space, hid_t memoryType,
                                const void* values, hid_t creation) {
    H5Pset_obj_track_times(creation, false);
    const Dataset dataset(H5Dcreate2(m_id, path.toUtf8().constData(), type, space, H5P_DEFAULT,
                                     creation, H5P_DEFAULT));
    m_good = m_good && H5Dwrite(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0;
}

void FileInMemory::writeArray(const QString& path, hid_t type, hid_t memoryType, const void* values,
                              const QVector<int>& extents) {
    const std::vector<hsize_t> sizes = sizesOf(extents);
    std::vector<hsize_t> block = sizes;
    for (hsize_t& edge : block) {
        edge = std::min<hsize_t>(edge, extents.size() > 1 ? BlockEdge : BlockEdge * BlockEdge);
    }
    const Space space(H5Screate_simple(extents.size(), sizes.data(), nullptr));
    const Properties creation(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(creation, extents.size(), block.data());
    H5Pset_shuffle(creation);
    if (H5Zfilter_avail(H5Z_FILTER_DEFLATE) > 0) {
        H5Pset_deflate(creation, Compression);
    }
    writeDataset(path, type, space, memoryType, values, creation);
}

void FileInMemory::group(const QString& path) {
    const Properties creation(H5Pcreate(H5P_GROUP_CREATE));
    H5Pset_obj_track_times(creation, false);
    const Object made(
        H5Gcreate2(m_id, path.toUtf8().constData(), H5P_DEFAULT, creation, H5P_DEFAULT));
    m_good = m_good && made.isGood();
}

void FileInMemory::attribute(const QString& path, const char* name, const QString& value) {
    const QByteArray bytes = value.toUtf8();
    const char* const start = bytes.constData();
    const Type type(textType(H5T_VARIABLE));
    writeAttribute(path, name, type, Space(H5Screate(H5S_SCALAR)), &start);
}

void FileInMemory::attribute(const QString& path, const char* name, const QStringList& values) {
    if (values.isEmpty()) {
        return;
    }
    std::vector<QByteArray> bytes;
    std::vector<const char*> starts;
    for (const QString& value : values) {
        bytes.push_back(value.toUtf8());
    }
    for (const QByteArray& value : bytes) {
        starts.push_back(value.constData());
    }
    const hsize_t size = starts.size();
    const Type type(textType(H5T_VARIABLE));
    writeAttribute(path, name, type, Space(H5Screate_simple(1, &size, nullptr)), starts.data());
}

void FileInMemory::attribute(const QString& path, const char* name, int value) {
    writeAttribute(path, name, H5T_NATIVE_INT32, Space(H5Screate(H5S_SCALAR)), &value);
}

void FileInMemory::number(const QString& path, int value) {
    writeDataset(path, H5T_STD_I32LE, Space(H5Screate(H5S_SCALAR)), H5T_NATIVE_INT32, &value,
                 Properties(H5Pcreate(H5P_DATASET_CREATE)));
}

void FileInMemory::text(const QString& path, const QString& value) {
    const QByteArray bytes = value.toUtf8();
    const Type type(textType(static_cast<std::size_t>(std::max(1, bytes.size()))));
    writeDataset(path, type, Space(H5Screate(H5S_SCALAR)), type, bytes.constData(),
                 Properties(H5Pcreate(H5P_DATASET_CREATE)));
}

void FileInMemory::array(const QString& path, const std::vector<double>& values,
                         const QVector<int>& extents) {
    writeArray(path, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, values.data(), extents);
}

void FileInMemory::array(const QString& path, const std::vector<quint8>& values,
                         const QVector<int>& extents) {
    writeArray(path, H5T_STD_U8LE, H5T_NATIVE_UINT8, values.data(), extents);
}

bool FileInMemory::finish(const std::function<bool(const char* bytes, qint64 size)>& take) {
    void* memory = nullptr;
    if (!m_good || H5Fflush(m_id, H5F_SCOPE_LOCAL) < 0 ||
        H5Fget_vfd_handle(m_id, H5P_DEFAULT, &memory) < 0) {
        return false;
    }
    const qint64 size = H5Fget_file_image(m_id, nullptr, 0);
    return take(*static_cast<const char* const*>(memory), size);
}

/// Other files are not followed: one that a damaged or strange file names may wait for ever.
herr_t followNoFile(const char*, const char*, const char*, const char*, unsigned*, hid_t, void*) {
    return -1;
}

hid_t openDataset(hid_t file, const QString& path) {
    const Properties access(H5Pcreate(H5P_DATASET_ACCESS));
    H5Pset_elink_cb(access, followNoFile, nullptr);
    return H5Dopen2(file, path.toUtf8().constData(), access);
}

/// Whether the values lie in the file itself, in one piece.
bool isInFile(hid_t dataset) {
    const Properties creation(H5Dget_create_plist(dataset));
    const H5D_layout_t layout = H5Pget_layout(creation);
    return (layout == H5D_CONTIGUOUS || layout == H5D_COMPACT) &&
           H5Pget_external_count(creation) == 0;
}

std::optional<QString> textOf(const QString& fileName, const QString& path, qint64 mostBytes) {
    const FileHandle file(openToRead(fileName));
    if (!file.isGood()) {
        return std::nullopt;
    }
    const Dataset dataset(openDataset(file, path));
    if (!dataset.isGood() || !isInFile(dataset)) {
        return QString();
    }
    const Type type(H5Dget_type(dataset));
    const Space space(H5Dget_space(dataset));
    const bool isText = H5Tget_class(type) == H5T_STRING && H5Tis_variable_str(type) == 0 &&
                        H5Sget_simple_extent_npoints(space) == 1;
    const std::size_t bytes = isText ? H5Tget_size(type) : 0;
    if (bytes == 0 || bytes > static_cast<std::size_t>(mostBytes)) {
        return QString();
    }
    QByteArray text(static_cast<int>(bytes), '\0');
    if (H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()) < 0) {
        return std::nullopt;
    }
    return QString::fromUtf8(text.constData());
}

class Library : public Hdf5Library {
  public:
    std::unique_ptr<Writer> makeWriter() const override { return std::make_unique<FileInMemory>(); }
    std::optional<QString> text(const QString& fileName, const QString& path,
                                qint64 mostBytes) const override {
        return textOf(fileName, path, mostBytes);
    }
};

}  // namespace

const Hdf5Library* tarnwickHdf5Library() {
    static const Library library;
    return &library;
}
