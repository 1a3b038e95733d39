#!/usr/bin/env python3
"""Recordings of every kind through the real programs: what they become is looked at and listened
to beside its source."""
import functools
import shlex
import shutil
import unittest
from dataclasses import replace

import comparison
import oracle
from make_recordings import Maker
from program import LAUNCHER, RECORDINGS, SANITIZER, WINE, Case, main

make = Maker(RECORDINGS)

# A star for what is tried under Wine too; name; sources in their order; and what is not the plain
# wish (status 0, everything as it was): status, says (in the launcher's words), truth (what the
# source was before it was damaged), cropped (where the pictures of each part are, when they have
# borders), and the fields of a Wish.
TABLE = """
# Copied where MP4 carries it, transcoded where it does not
* h264_aac_mkv       h264-aac.mkv         copied=va
  h264_aac_mp4       h264-aac.mp4         copied=va
* h264_aac_flv       h264-aac.flv         copied=va
  h264_aac_ts        h264-aac.ts
  live_mkv           live.mkv             copied=va
* hevc               hevc.mkv             copied=v
  hevc_ts            hevc.ts
* vp8_vorbis         vp8-vorbis.webm
* vp9_opus           vp9-opus.webm
  av1_opus           av1-opus.webm
* mjpeg_pcm          mjpeg-pcm.avi
  mpeg4_mp3          mpeg4-mp3.avi        copied=a
  mpeg2_mp2          mpeg2-mp2.mpg
  odd_size           odd-size.webm
  pcm                pcm.wav
  vorbis             vorbis.ogg
  opus               opus.ogg
  no_audio           no-audio.mkv         copied=v

# Irregular times of pictures
  screen_vp8         screen.vp8.webm
* screen_vp9         screen.vp9.webm
  screen_mjpeg       screen.mjpeg.mkv
  screen_h264_mkv    screen.h264.mkv      copied=va
* screen_h264_mp4    screen.h264.mp4      copied=va
  screen_h264_flv    screen.h264.flv      copied=va
  late_second        late-second.webm
  late_second_mp4    late-second.mp4      copied=v
  far_flv            far.flv              copied=v
  one_a_second       one-a-second.webm
  same_millisecond   same-millisecond.mkv

# Times that start again, jump, overlap, drift or start before zero
* runs_ts            runs.ts              seams=1 truth=h264-aac.ts+h264-aac.ts
  runs_mpg           runs.mpg             seams=1 truth=mpeg2-mp2.mpg+mpeg2-mp2.mpg
  runs_flv           runs.flv             seams=1 truth=h264-aac.flv+h264-aac.flv
  runs_ogg           runs.ogg             seams=1 truth=vorbis.ogg+vorbis.ogg
  cluster_late       cluster-late.webm    seams=2 truth=clusters.webm
  cluster_early      cluster-early.webm   seams=2 truth=clusters.webm
  wrap_ts            wrap.ts
* negative_mkv       negative.mkv         copied=va truth=h264-aac.mkv
  gap_in_sound       gap.mkv
  overlapping_sound  overlap.flv seams=1
  drifting_sound     drift.mkv

# Codec data that changes, colours, formats, shapes
  new_header_flv     new-header.flv       size=320x180
  two_descriptions   two-descriptions.mp4 truth=plain.mp4+cabac.mp4
* rgb                rgb.mkv
  full_range         full-range.mkv       copied=v
  full_range_vp9     full-range.webm
  bt709              bt709.mkv            copied=v
  bt709_vp9          bt709.webm
  bt709_mjpeg        bt709-mjpeg.mkv
  smpte170m          smpte170m.webm
  interlaced         interlaced.mpg       fields=tt
  high_10            high-10.mkv
  h264_4_2_2         4-2-2.mkv
  h264_4_4_4         4-4-4.mkv
  lossless           lossless.mkv
  turned             sideways.mp4
  turned_mjpeg       sideways-mjpeg.mov
  pixel_aspect       anamorphic.mp4       copied=va
  pixel_aspect_vp8   anamorphic.webm
  grows              grows.webm           size=640x360

# Sounds, languages, chapters, subtitles, covers, tags
  mono               sound-mono.mka
  three_channels     sound-3.0.mka
  six_channels       sound-5.1.mka
  seven_channels     sound-6.1.mka        channels=6,7
* eight_channels     sound-7.1.mka
  languages          languages.mkv        copied=va
* subtitles_mkv      subtitles.mkv        copied=va
  subtitles_mp4      subtitles.mp4        copied=va
* subtitles_webm     subtitles.webm
  unstyled           unstyled.mkv         copied=va truth=styled.mkv
* chapters           chapters.mkv         copied=va tags='title artist comment date'
  chapters_webm      chapters.webm
* cover              cover.m4a            copied=a tags=title
  cover_mkv          cover.mkv            copied=va
  attached_picture   tiff.mkv             copied=va truth=h264-aac.mkv
  place_and_camera   location.mov         copied=va tags='location title'

# Parts
* equal_parts        h264-aac.mkv h264-aac.mkv h264-aac.mkv copied=va seams=2
* other_parameters   h264-aac.mkv other-parameters.mkv seams=1 size=400x200 cropped=356:200:22:0,-
  other_codec        vp9-opus.webm h264-aac.mkv seams=1
  other_codec_data   plain.mp4 coarse.mp4 seams=1
  sound_first        pcm.wav h264-aac.mkv
  muted_first        muted.mkv h264-aac.mkv seams=1
  muted              muted.mkv            truth=no-audio.mkv
* turned_second      upright.mp4 sideways.mp4 seams=1
  lying_second       upright.mp4 lying.mp4 seams=1 size=320x180 cropped=-,100:180:110:0
  aspect_second      upright.mp4 anamorphic.mp4 seams=1 size=320x180 cropped=-,320:134:0:22

# Damaged and cut: the rest is converted and the loss is told
  zeros_ts           zeros.ts             truth=h264-aac.ts
  cut_live           cut-live.mkv         lost=2.1,9 truth=live.mkv
  cut_fragments_mp4  cut-fragments.mp4    status=3 says='cut off' lost=1,9 truth=fragments.mp4
  cut_fragments_mov  cut-fragments.mov    status=3 says='cut off' lost=1,9 truth=fragments.mov
* cut_mkv            cut-h264-aac.mkv     status=3 says='cut off' lost=2.1,9 truth=h264-aac.mkv
  cut_faststart      cut-faststart.mp4    status=3 says='cut off' lost=2.1,9 truth=h264-aac.mkv
  cut_webm           cut-vp8-vorbis.webm  status=3 says='cut off' lost=1.9,9 truth=vp8-vorbis.webm
* cut_wav            cut-pcm.wav          status=3 says='1.6 s of sound' lost=2.4,9 truth=pcm.wav
  cut_avi            cut-mjpeg-pcm.avi    status=3 says='cut off' lost=2.1,9 truth=mjpeg-pcm.avi
  cut_mp4            cut-h264-aac.mp4     status=1 says=index
  hole_mkv           hole-h264-aac.mkv    status=3 says=damaged lost=1,3.1 truth=h264-aac.mkv
* hole_mp4           hole-faststart.mp4   status=3 says=damaged lost=1,3.1 truth=h264-aac.mkv
  hole_ts            hole-h264-aac.ts     status=3 says=damaged lost=1,3.1 truth=h264-aac.mkv
  hole_flv           hole-h264-aac.flv    status=3 says=damaged lost=1,3.1 truth=h264-aac.mkv
  hole_webm          hole-vp8-vorbis.webm status=3 says=damaged lost=1,3.1 truth=vp8-vorbis.webm
  lost_chunks        lost-chunks.mp4      status=3 says=damaged lost=1,3.1 truth=in-order.mp4
  late_key_ts        late-key.ts
  noisy_h264         noisy-h264-aac.mkv   status=3 says=:.1[^;]*;.t lost=1.1,3.2 truth=h264-aac.mkv
* noisy_vp8          noisy-vp8-vorbis.webm status=3 says=0:01 lost=1.1,3.2 truth=vp8-vorbis.webm
  dead_sound         dead-sound.mkv       status=3 says='sound from' truth=no-audio.mkv
  keyless            keyless.mkv          status=3 says='picture from' truth=sound-alone.mkv
  dead_picture       dead-picture.mkv     status=3 says='picture from' truth=sound-alone.mkv

# Refused in words
* encrypted          encrypted.mp4        status=1 says=encrypted
  wide               wide.mkv             status=1 says='error 20011'
  empty_wav          empty.wav            status=1 says='error 200'
  nothing            nothing.mp4          status=1 says='error 20004'
* minutes            minutes.mp4          status=1 says='error 20005'
* playlist           playlist.mp4         status=1 says='error 20005'
  header_mkv         header.mkv           status=1 says='error 2000[56]'
  header_mp4         header.mp4           status=1 says='error 2000[56]'
  bad_second         no-audio.mkv minutes.mp4 status=1 says='error 20005'
  text_alone         subtitles-alone.mkv  status=1 says='error 20010'
  unknown_codec      unknown-codec.webm   status=1 says='error 20011'
"""


@functools.cache
def look(names):
    """What these recordings are behind each other."""
    return functools.reduce(oracle.Seen.followed_by, (oracle.look(make(each)) for each in names))


class Recording(Case):
    def check(self, *sources, status=0, says="", truth="", cropped="", **wish):
        given = [
            self.folder / f"{number}{make(name).suffix}" for number, name in enumerate(sources)
        ]
        for name, path in zip(sources, given):
            shutil.copy(make(name), path)
        run = self.terminal("--delete-sources", *given, self.destination)
        self.assertEqual(run.status, int(status), run)
        self.assertRegex(run.errors, says or "$")
        kept = given if run.status else []
        self.assert_left(*(each.name for each in kept), *["out.mp4"] * (run.status != 1))
        for name, path in zip(sources, kept):
            self.assertEqual(path.read_bytes(), make(name).read_bytes())
        if run.status == 1:
            return
        wanted = look(tuple(truth.split("+") if truth else sources))
        made = oracle.look(self.destination)
        for name in "size", "lost", "channels":
            if name in wish:
                numbers = wish[name].replace("x", ",").split(",")
                wish[name] = tuple(map(float if name == "lost" else int, numbers))
        wish |= {name: int(wish[name]) for name in ["seams"] if name in wish}
        if cropped:
            self.uncover(made, sources, cropped.split(","))
        found = comparison.differences(wanted, made, **wish)
        self.assertFalse(found, f"\n{run}" + "\n".join(found))

    def uncover(self, made, sources, places):
        """Takes the borders from the pictures of each part."""
        done = 0
        for source, place in zip(sources, places):
            count = len(look((source,)).of("video")[0].pictures)
            if place != "-":
                film = made.of("video")[0].pictures
                bare = oracle.look(self.destination, crop=place).of("video")[0].pictures
                for number in range(done, min(done + count, len(bare))):
                    film[number] = replace(film[number], cells=bare[number].cells)
            done += count


class Names(Case):
    def test_may_be_long_and_of_any_script(self):
        for name in "\u00fc\u4f1a\u8b70 100% (1).mp4", "n" * 251 + ".mp4":
            with self.subTest(name=name):
                self.destination = self.folder / name
                self.convert(make("no-audio.mkv"))
                made = oracle.look(self.destination)
                self.assertFalse(comparison.differences(look(("no-audio.mkv",)), made))


def add_rows():
    def row(words, wish):
        return lambda self: self.check(*words, **wish)

    for line in TABLE.splitlines():
        name, *words = shlex.split(line.lstrip("* "), comments=True) or [""]
        if name and (line.startswith("*") or not WINE):
            wish = dict(each.split("=", 1) for each in words if "=" in each)
            sources = [each for each in words if "=" not in each]
            setattr(Recording, f"test_{name}", row(sources, wish))


add_rows()


@unittest.skipIf(WINE or SANITIZER, "limits as Linux sets them, and a sanitizer needs far more")
class Limits(Case):
    def limited(self, limit, *arguments):
        return self.run_program(limit, LAUNCHER, "--no-window", *arguments, program="prlimit")

    def test_little_memory_is_an_error_or_enough(self):
        """Whatever allocation fails, nothing crashes and nothing incomplete is called complete."""
        for name in "large.mkv", "h264-aac.mkv":
            for megabytes in range(240, 600, 40):
                with self.subTest(name=name, megabytes=megabytes):
                    self.destination.unlink(missing_ok=True)
                    run = self.limited(f"--as={megabytes}000000", make(name), self.destination)
                    if run.status == 2:  # not even the libraries can be loaded
                        continue
                    self.assertIn(run.status, (0, 1), run)
                    self.assert_left(*["out.mp4"] * (run.status != 1))
                    if run.status == 0:
                        made = oracle.look(self.destination)
                        self.assertFalse(comparison.differences(look((name,)), made))

    def test_three_thousand_parts_need_little_memory(self):
        part, count = make("tiny.mkv"), 3000
        for number in range(count):
            (self.folder / f"{number}.mkv").symlink_to(part)
        parts = [f"{number}.mkv" for number in range(count)]
        run = self.limited("--as=1000000000", *parts, self.destination)
        self.assertEqual(run.status, 0, run)
        packets = oracle.probe(self.destination)["packets"]
        self.assertEqual(len(packets), count * 3)

    def test_jumps_of_a_day_cost_seconds(self):
        for name in "jump.mkv", "days.mkv":
            with self.subTest(name=name):
                self.destination.unlink(missing_ok=True)
                run = self.limited("--cpu=20", make(name), self.destination)
                self.assertIn(run.status, (0, 1), run)
                if run.status == 0:
                    files = (self.destination, make(name))
                    made, source = (self.lasts(oracle.probe(each)) for each in files)
                    self.assertAlmostEqual(made, source, delta=0.1)

    def lasts(self, known):
        """All packets behind each other."""
        return sum(float(each.get("duration_time", 0)) for each in known["packets"])


if __name__ == "__main__":
    main()
