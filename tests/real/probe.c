// Loads every icon of the files named on its command line as a Windows program would, and tells what did not load.
// With "self" as the only argument it loads the icon of its own program file, as a started program does.
#include <stdio.h>
#include <string.h>
#include <windows.h>

static int g_groups, g_images, g_faults;

static void Fault(const char* path, const char* what, int number) {
    printf("FAULT %s: %s %d, error %lu\n", path, what, number, GetLastError());
    ++g_faults;
}

static void* Bytes(HMODULE module, LPCSTR type, LPCSTR name, WORD language, DWORD* size) {
    HRSRC found = FindResourceExA(module, type, name, language);
    if (!found) return NULL;
    *size = SizeofResource(module, found);
    return LockResource(LoadResource(module, found));
}

static int Big16(const BYTE* bytes) {
    return bytes[0] << 8 | bytes[1];
}

/// The icon made of one image has the size that the image itself tells: directories have no room for more than 256.
static void CheckImage(const char* path, BYTE* bytes, DWORD size, int number) {
    BOOL is_png = !memcmp(bytes, "\x89PNG", 4);
    int width = is_png ? Big16(bytes + 18) : ((BITMAPINFOHEADER*)bytes)->biWidth;
    int full_height = is_png ? Big16(bytes + 22) : ((BITMAPINFOHEADER*)bytes)->biHeight / 2;
    HICON icon = CreateIconFromResourceEx(bytes, size, TRUE, 0x30000, 0, 0, LR_DEFAULTCOLOR);
    ICONINFO info;
    BITMAP bitmap;
    ++g_images;
    if (!icon || !GetIconInfo(icon, &info)) {
        Fault(path, "no icon made of image", number);
        return;
    }
    int height = GetObjectA(info.hbmColor ? info.hbmColor : info.hbmMask, sizeof bitmap, &bitmap) ? bitmap.bmHeight : 0;
    if (!info.hbmColor) height /= 2;
    if (bitmap.bmWidth != width || height != full_height) Fault(path, "wrong size of image", number);
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
    DestroyIcon(icon);
}

static BOOL CALLBACK OnLanguage(HMODULE module, LPCSTR type, LPCSTR name, WORD language, LONG_PTR path_value) {
    const char* path = (const char*)path_value;
    DWORD size = 0;
    BYTE* group = Bytes(module, type, name, language, &size);
    ++g_groups;
    if (!group || size < 6 || size < 6 + 14u * *(WORD*)(group + 4)) {
        Fault(path, "group does not load", g_groups);
        return TRUE;
    }
    for (int i = 0; i < *(WORD*)(group + 4); ++i) {
        const BYTE* entry = group + 6 + 14 * i;
        int number = *(WORD*)(entry + 12);
        BYTE* image = Bytes(module, RT_ICON, MAKEINTRESOURCEA(number), language, &size);
        if (!image || size != *(DWORD*)(entry + 8))
            Fault(path, "image is not there in full", number);
        else
            CheckImage(path, image, size, number);
    }
    return TRUE;
}

static BOOL CALLBACK OnName(HMODULE module, LPCSTR type, LPSTR name, LONG_PTR path) {
    HICON icon = (HICON)LoadImageA(module, name, IMAGE_ICON, 32, 32, LR_DEFAULTCOLOR);
    if (!icon) Fault((const char*)path, "LoadImage fails for group", IS_INTRESOURCE(name) ? (int)(ULONG_PTR)name : -1);
    DestroyIcon(icon);
    return EnumResourceLanguagesA(module, type, name, OnLanguage, path);
}

int main(int count, char** arguments) {
    if (count == 2 && !strcmp(arguments[1], "self")) {
        EnumResourceNamesA(NULL, RT_GROUP_ICON, OnName, (LONG_PTR) "self");
        printf("self: %d groups, %d images, %d faults\n", g_groups, g_images, g_faults);
        return g_faults ? 1 : 42;
    }
    for (int i = 1; i < count; ++i) {
        HMODULE module = LoadLibraryExA(arguments[i], NULL, LOAD_LIBRARY_AS_DATAFILE);
        g_groups = g_images = 0;
        if (!module)
            Fault(arguments[i], "does not load", i);
        else {
            EnumResourceNamesA(module, RT_GROUP_ICON, OnName, (LONG_PTR)arguments[i]);
            FreeLibrary(module);
        }
        printf("%s: %d groups, %d images\n", arguments[i], g_groups, g_images);
    }
    return g_faults ? 1 : 0;
}
