#!/usr/bin/env bash
# Makes what the Windows build links besides MinGW's own libraries, and prints the folder it is in:
# zlib (Debian's libz-mingw-w64-dev), minizip, libx264, libdav1d and a small static FFmpeg, cross-built
# from Debian's source packages.
#
# usage: scripts/windows-dependencies.sh [--print-prefix]
#   --print-prefix   only print the folder, whether or not it has been made
#
# The folder lies outside the tree and is named by everything that decides its contents, so only the
# first run pays (two to four minutes on two cores). `cmake --preset windows` finds it by itself;
# RECORD_CONVERTER_WINDOWS_PREFIX, set in the environment of both, names another one.
#
# Needs: g++-mingw-w64-x86-64-posix libz-mingw-w64-dev dpkg-dev nasm make meson pkg-config.
#
# libx264 makes this FFmpeg, and so the engine's Windows library as built, subject to the GPL, as
# Debian's own FFmpeg is. RECORD_CONVERTER_X264=0 leaves it out; videos that MP4 cannot carry then
# become H.264 by Media Foundation, or MPEG-4 where Windows has no Media Foundation encoder.
set -euo pipefail

# shellcheck source-path=SCRIPTDIR source=windows-common.sh
. "$(dirname "$(readlink -f "$0")")/windows-common.sh"
readonly with_x264=${RECORD_CONVERTER_X264:-1}

# FFmpeg keeps the configured folder as a text in the library, so that is /opt; the .pc files find
# themselves.
# install_with COMMAND...: what installs when DESTDIR is set.
install_with() {
    DESTDIR=$work/stage "$@"
    sed -i "s|^prefix=.*|prefix=\${pcfiledir}/../..|; s|=/opt/|=\${prefix}/|; s|-L${prefix}[^ ]*||g" \
        "$prefix"/lib/pkgconfig/*.pc
}

build_minizip() (
    cd "$work/minizip"
    local sources=(zip unzip ioapi iowin32) source
    for source in "${sources[@]}"; do
        $launcher $target-gcc-posix -O2 -I. -c "$source.c" -o "$source.o"
    done
    "$target-ar" rcs libminizip.a "${sources[@]/%/.o}"
    mkdir -p "$prefix/include/minizip" "$prefix/lib/pkgconfig"
    cp libminizip.a "$prefix/lib/"
    cp zip.h unzip.h ioapi.h iowin32.h crypt.h "$prefix/include/minizip/"
    cat >"$prefix/lib/pkgconfig/minizip.pc" <<'END'
prefix=${pcfiledir}/../..
Name: minizip
Description: zip archives
Version: 1.1
Requires: zlib
Libs: -L${prefix}/lib -lminizip
Cflags: -I${prefix}/include/minizip
END
)

build_x264() (
    cd "$work/x264"
    CC="$launcher $target-gcc-posix" ./configure --host=$target --cross-prefix=$target- --prefix=/opt \
        --enable-static --disable-cli --disable-opencl --bit-depth=8 --chroma-format=420 \
        --disable-avs --disable-swscale --disable-lavf --disable-ffms --disable-gpac --disable-lsmash
    make -j"$jobs"
    install_with make install
)

build_dav1d() (
    cd "$work/dav1d"
    cat >cross.txt <<END
[binaries]
c = ['$launcher', '$target-gcc-posix']
ar = '$target-ar'
strip = '$target-strip'
[host_machine]
system = 'windows'
cpu_family = 'x86_64'
cpu = 'x86_64'
endian = 'little'
END
    meson setup build --cross-file cross.txt --prefix=/opt --libdir=lib --buildtype=release \
        --default-library=static -Dbitdepths=8,16 -Denable_tools=false -Denable_tests=false
    install_with ninja -C build -j"$jobs" install
)

# Only what recordings are made of. FFmpeg's own AV1 decoder needs the help of a graphics card.
build_ffmpeg() (
    cd "$work/ffmpeg"
    local demuxers=matroska,mov,flv,live_flv,mpegts,mpegps,avi,asf,ogg,wav,w64,mp3,aac,ac3,flac,h264
    local decoders=h264,hevc,vp8,vp9,libdav1d,mpeg4,mpeg1video,mpeg2video,h263,flv,mjpeg,theora
    decoders+=,vc1,wmv3,flashsv,flashsv2,rawvideo,aac,aac_latm,opus,vorbis,mp2,mp3,ac3,eac3,flac,alac
    decoders+=,wmav1,wmav2,nellymoser,speex,adpcm_swf,adpcm_ms,adpcm_ima_wav,gsm_ms
    decoders+=,pcm_s16le,pcm_s16be,pcm_s24le,pcm_s32le,pcm_f32le,pcm_f64le,pcm_u8,pcm_s8
    decoders+=,pcm_mulaw,pcm_alaw,subrip,srt,webvtt,ass,ssa,movtext,text
    local parsers=h264,hevc,vp8,vp9,av1,aac,aac_latm,ac3,opus,vorbis,mpegaudio,mpeg4video
    parsers+=,mpegvideo,flac,h263,mjpeg,vc1
    local filters=aac_adtstoasc,av1_frame_merge,extract_extradata,h264_mp4toannexb,hevc_mp4toannexb
    filters+=,mpeg4_unpack_bframes,vp9_superframe,vp9_superframe_split,opus_metadata,null
    local encoders=aac,mpeg4,pcm_s16le,rawvideo,movtext
    local video=(--enable-gpl --enable-libx264 --enable-encoder=libx264)
    [ "$with_x264" != 0 ] || video=(--enable-mediafoundation --enable-encoder=h264_mf)
    ./configure --prefix=/opt --enable-cross-compile --arch=x86_64 --target-os=mingw64 \
        --cross-prefix=$target- --cc="$launcher $target-gcc-posix" --cxx=$target-g++-posix \
        --pkg-config=pkg-config --pkg-config-flags=--static \
        --disable-everything --disable-autodetect --disable-programs --disable-doc \
        --disable-network --disable-avdevice --disable-avfilter --disable-postproc \
        --disable-debug --enable-static --disable-shared --enable-w32threads --enable-zlib \
        --enable-libdav1d --enable-protocol=file --enable-demuxer=$demuxers --enable-decoder=$decoders \
        --enable-parser=$parsers --enable-bsf=$filters --enable-encoder=$encoders \
        --enable-muxer=mp4,mov,matroska,webm,wav,mpegts,null "${video[@]}"
    make -j"$jobs"
    install_with make install
)

[ -n "${RECORD_CONVERTER_WINDOWS_PREFIX:-}" ] && { echo "$RECORD_CONVERTER_WINDOWS_PREFIX"; exit 0; }
command -v $target-gcc-posix >/dev/null || fail "no $target-gcc-posix: install g++-mingw-w64-x86-64-posix"
begin "$cache/windows-$(key "$with_x264" "$(installed_version libz-mingw-w64-dev)" \
    "$(installed_version libavcodec-dev)")" "${1:-}"
[ -e /usr/$target/lib/libz.a ] || fail "no zlib for MinGW: install libz-mingw-w64-dev"
for tool in dpkg-source nasm make meson ninja pkg-config; do
    command -v $tool >/dev/null || fail "$tool is missing"
done
export PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig:/usr/$target/lib/pkgconfig
packages=(minizip dav1d ffmpeg)
[ "$with_x264" = 0 ] || packages=(minizip x264 dav1d ffmpeg)
for package in "${packages[@]}"; do
    step "source of $package" fetch_package "$package" "$package"
    step "$package" "build_$package"
done
finish
