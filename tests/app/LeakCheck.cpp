// What the leak check is told of Qt in programs that show the window.

extern "C" {

// Qt 6.4's software renderer frees the texture of an image when a later frame is drawn, never when
// the renderer itself ends; a QML file with one Image in an otherwise empty program shows it. With
// the texture goes what hangs on it, the picture.
[[gnu::visibility("default")]] const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:QSGTexture::QSGTexture\n";
}
}
