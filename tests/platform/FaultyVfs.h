// A file layer for SQLite whose writes fail on order.
//
// Stands in front of the system's own for the length of a scope: databases that
// are opened meanwhile go through it, and must be closed before it ends.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <new>

class FaultyVfs {
public:
    FaultyVfs() {
        m_pReal = sqlite3_vfs_find(nullptr);
        m_vfs = *m_pReal;
        m_vfs.zName = "velko-faulty";
        m_vfs.szOsFile = static_cast<int>(sizeof(File)) + m_pReal->szOsFile;
        m_vfs.pAppData = this;
        m_vfs.xOpen = &FaultyVfs::Open;
        sqlite3_vfs_register(&m_vfs, 1);
    }
    ~FaultyVfs() {
        sqlite3_vfs_unregister(&m_vfs);
        sqlite3_vfs_register(m_pReal, 1);
    }
    FaultyVfs(const FaultyVfs&) = delete;
    FaultyVfs& operator=(const FaultyVfs&) = delete;

    // The `nNth` write, truncation or synchronisation from now fails, with
    // `bForEver` all later ones too; 0 ends that.
    void FailWrite(int nNth, bool bForEver) const {
        m_bFailed = false;
        m_bForEver = bForEver;
        m_nUntilFailure = nNth;
    }
    bool HasFailed() const { return m_bFailed; }

private:
    struct File {
        sqlite3_file base;
        const FaultyVfs* pOwner;
        sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    };

    static File& Of(sqlite3_file* pFile) { return *reinterpret_cast<File*>(pFile); }

    bool Fails() const {
        if (m_nUntilFailure == 0 || --m_nUntilFailure > 0) {
            return false;
        }
        m_nUntilFailure = m_bForEver ? 1 : 0;
        m_bFailed = true;
        return true;
    }

    static int Open(sqlite3_vfs* pVfs, const char* pszName, sqlite3_file* pFile, int nFlags,
                    int* pOutFlags) {
        const auto* pSelf = static_cast<const FaultyVfs*>(pVfs->pAppData);
        File& file = *new (pFile) File{{nullptr}, pSelf};
        const int nResult =
            pSelf->m_pReal->xOpen(pSelf->m_pReal, pszName, file.Real(), nFlags, pOutFlags);
        if (file.Real()->pMethods != nullptr) {
            file.base.pMethods = Methods();
        }
        return nResult;
    }

    template <class F>
    static int Write(sqlite3_file* pFile, int nError, F fnReal) {
        return Of(pFile).pOwner->Fails() ? nError : fnReal(Of(pFile).Real());
    }

    static const sqlite3_io_methods* Methods() {
        static const sqlite3_io_methods s_methods = [] {
            sqlite3_io_methods m{};
            m.iVersion = 1; // no shared memory: the store does not ask for it
            m.xClose = [](sqlite3_file* f) { return Of(f).Real()->pMethods->xClose(Of(f).Real()); };
            m.xRead = [](sqlite3_file* f, void* p, int n, sqlite3_int64 at) {
                return Of(f).Real()->pMethods->xRead(Of(f).Real(), p, n, at);
            };
            m.xWrite = [](sqlite3_file* f, const void* p, int n, sqlite3_int64 at) {
                return Write(f, SQLITE_IOERR_WRITE, [&](sqlite3_file* pReal) {
                    return pReal->pMethods->xWrite(pReal, p, n, at);
                });
            };
            m.xTruncate = [](sqlite3_file* f, sqlite3_int64 nSize) {
                return Write(f, SQLITE_IOERR_TRUNCATE, [&](sqlite3_file* pReal) {
                    return pReal->pMethods->xTruncate(pReal, nSize);
                });
            };
            m.xSync = [](sqlite3_file* f, int nFlags) {
                return Write(f, SQLITE_IOERR_FSYNC, [&](sqlite3_file* pReal) {
                    return pReal->pMethods->xSync(pReal, nFlags);
                });
            };
            m.xFileSize = [](sqlite3_file* f, sqlite3_int64* p) {
                return Of(f).Real()->pMethods->xFileSize(Of(f).Real(), p);
            };
            m.xLock = [](sqlite3_file* f, int n) {
                return Of(f).Real()->pMethods->xLock(Of(f).Real(), n);
            };
            m.xUnlock = [](sqlite3_file* f, int n) {
                return Of(f).Real()->pMethods->xUnlock(Of(f).Real(), n);
            };
            m.xCheckReservedLock = [](sqlite3_file* f, int* p) {
                return Of(f).Real()->pMethods->xCheckReservedLock(Of(f).Real(), p);
            };
            m.xFileControl = [](sqlite3_file* f, int n, void* p) {
                return Of(f).Real()->pMethods->xFileControl(Of(f).Real(), n, p);
            };
            m.xSectorSize = [](sqlite3_file* f) {
                return Of(f).Real()->pMethods->xSectorSize(Of(f).Real());
            };
            m.xDeviceCharacteristics = [](sqlite3_file* f) {
                return Of(f).Real()->pMethods->xDeviceCharacteristics(Of(f).Real());
            };
            return m;
        }();
        return &s_methods;
    }

    sqlite3_vfs* m_pReal = nullptr;
    sqlite3_vfs m_vfs{};
    mutable std::atomic<int> m_nUntilFailure{0};
    mutable std::atomic<bool> m_bForEver{false};
    mutable std::atomic<bool> m_bFailed{false};
};
