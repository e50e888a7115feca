#include "wall.h"

#include <comdef.h>
#include <new>

HRESULT ResultOfException() noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const _com_error& error) {
        return FAILED(error.Error()) ? error.Error() : E_UNEXPECTED;
    } catch (...) {
        return E_UNEXPECTED;
    }
}
