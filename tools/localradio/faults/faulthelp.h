#pragma once

namespace localradio {

/// What `--help-faults` prints.
inline constexpr char faultHelp[] = R"(What can be made to go wrong.

Any stream, /stream/ID, /private/ID or /kind/NAME (see --list-kinds), takes
these parameters in its query. They can be combined; a value that makes no sense is answered with status 400
and a line that says which.

  status=N            that status, 100 to 599, and a short text instead
  redirect=same       to the same stream without faults
  redirect=port       the same on the other port
  redirect=tls        the same on the encrypted port
  redirect=loop       to itself
  redirect=file       to file:///etc/passwd
  redirect=ADDRESS    to whatever else stands here
  body=html           a short web page
  body=random         random bytes without end, always the same ones
  body=zeros          zeros without end
  body=endless        the station itself, as fast as the client reads
  body=ogg-packet     Ogg with a packet that never ends
  body=ogg-second     the station, which must be Ogg, and a second stream whose
                      packet never ends
  body=mp4-atom       MP4 with a picture of 256 MB
  body=mp4-bomb       MP4 whose compressed head inflates to 300 MB
  body=webm-element   WebM with an element of 256 MB
  body=ts-video       MPEG-TS that announces two videos, and sends noise for them
  paced=1             a body that is not the station's at the pace of that; as
                      fast as the client reads if left out
  after=SECONDS       all this, and what comes below, after so much sound of the
                      station; at /kind/NAME between two frames of it
  type=TEXT           another Content-Type
  header=TEXT         one more header, as it stands
  chunk=TEXT          announces chunks, begins the body with this as the size
                      of one, and never ends that one
  tag=BYTES           begins with an ID3v2 tag of so many bytes, 64 to
                      268435455, as fast as the client reads, and so the rest
  tag-of=padding|picture|text
                      what is in it, padding if left out
  close-after=BYTES   ends after so many bytes of the body, 0 for none
  reset-after=BYTES   resets the connection instead
  stall-after=BYTES   stays open instead, and silent
  silent-for=SECONDS  is silent for so long, and then goes on
  rate=N              bytes a second, head included
  icy=ODDITY          for MP3 and AAC with "Icy-MetaData: 1"; old-head for all:
    bad-metaint         announces another interval than it keeps
    zero-metaint        announces 0, and has no titles
    huge-metaint        announces a number beyond 64 bits, and has no titles
    text-metaint        announces a word, and has no titles
    unterminated        the title has no closing quote
    latin1              the title is not UTF-8
    nul                 the title has NULs within
    long                the title is as long as can be
    flood               a new title every 256 bytes
    old-head            "ICY 200 OK" for a status line

/private/ID answers status 401 unless the request brings the user and the
password of --user and --password.

Any address at all can be entered on conditions:

  token=required      a redirect to the same with a token that holds once; for
                      whoever brings an old one status 403
  cookie=required     a redirect to the same that sets a cookie; for whoever does
                      not bring it there status 403
  listeners=1         one at a time; for whoever else comes status 503
  busy=N              another status, 400 to 599
  slot=SECONDS        the place stays taken so long after its listener has gone

/silence?seconds=N makes all connections on the first port silent for N seconds,
at most 60: they stay open, and go on then. New ones are served at once.

/outage?seconds=N resets all connections on the first port and refuses new
ones for N seconds, at most 60. The second port stays.

Either port is an http proxy as well, which serves the same for any host. What
CONNECT asks for is the port of this machine that it names, and for any other
host the encrypted port. In the log, a request for a proxy has the scheme and
the host in "proxied", or the method CONNECT; of credentials and cookies there
is a digest.

With --tls-hold SECONDS the first client of the encrypted port waits so long for
the server's part of the handshake.

/refused is a playlist that leads to a port where nobody listens.

/playlist is a playlist made to order. It takes close-after, reset-after,
stall-after and rate as well, and these:

  entry=ADDRESS       an entry, as it stands; any number of them
  itself=1            an entry with its own address
  each-other=1        an entry with the address of a twin that names it back
  form=pls|m3u        pls if left out
  eol=lf|crlf|cr      how lines end, lf if left out
  bom=1               begins with a byte order mark
  type=TEXT           another Content-Type
  pad=BYTES           so many bytes of comments before the entries, 16 MiB at
                      most
  endless=1           comments without end after the entries

HLS is served at /hls/master.m3u8 and /hls/VARIANT.m3u8, where variants are low,
mid, high and video, the last as form=ts only. Of these parameters the master
hands on those that are for the lists of segments:

  form=ts|fmp4|aac    what segments are, ts if left out
  list=live|event|vod live if left out
  window=N            segments in the list, 6 if left out; of an event those
                      before the start
  variants=NAME,...   of the master, low,high,mid if left out
  renditions=1        every variant has its sound in a rendition of its own
  key=aes|aes-iv|rotate
                      segments are encrypted: with the vector that their number
                      is, with a vector that is told, with a new key after
                      every four
  address=root|absolute|port
                      addresses without scheme and host, with both, and on the
                      other port; relative if left out
  ranges=1            segments are ranges of a longer file
  discontinuity=1     times begin anew every 30.72 s
  itself=1            the list names itself in place of segments or variants
  endless=1           comments without end at the end of the list
  stall=SECONDS       the list changes no more, so long after it was asked for
  skip=N              after every ten segments, N numbers are left out
  other-variant=ADDRESS, other-segment=, other-key=, other-map=
                      what stands in place of these addresses, as it stands

and any list, segment or key takes status, redirect, close-after, reset-after,
stall-after and rate as a stream does, and with the first two of these:

  times=N             only the first N times that it is asked for
  every=N             only those segments whose number can be divided by N

A list hands on what begins with "segment-" to its segments and with "key-" to
its keys, without that: segment-status=404&segment-times=1. The master likewise
hands on what begins with "media-" to its variants.

As in any query, an "&" or "+" within a value is written %26 or %2B.

With --faults, one station for each fault that is worth hearing stands at the
end of the catalogue; a search for "fault" finds them. And whoever searches
for one of these gets that for an answer from the directory:

  fault:silent           nothing, on an open connection
  fault:closed           the connection closes without a byte
  fault:empty            no bytes for a body
  fault:header-drip      a byte of the head a second, without end
  fault:endless-headers  headers without end, as fast as the client reads
  fault:body-drip        20 bytes a second, without end
  fault:endless-body     stations without end, as fast as the client reads
  fault:bomb[=BYTES]     gzip; as many bytes inflated, 300 million if left out
  fault:deflate          the list, compressed
  fault:cookie           a redirect to itself that sets a cookie, and the list
                         for whoever brings that
  fault:long-length      1000 bytes fewer than its Content-Length says
  fault:short-length     twice as many
  fault:bad-chunk        chunks with a word for a size
  fault:reset            the connection is reset amid the list
  fault:truncate[=BYTES] the list ends after so many bytes, or in the middle
  fault:redirect=WHERE   to one of these: port, the whole directory on the
                         other port; loop, file or ADDRESS, as for a stream
  fault:status=N         that status, 200 to 599, and a line of text
  fault:portal           a network's login page
  fault:dtd              a document type declaration before the list
  fault:entities         one that makes a gigabyte of a short entity
  fault:external-entity  one that names a file
  fault:long-attribute[=BYTES]  a name of 100 million letters
  fault:attributes[=N]   a million attributes in a tag
  fault:depth[=N]        100,000 elements, each within the other
  fault:nul              a name with a NUL
  fault:bad-utf8         a name that is not UTF-8
  fault:charset=NAME     declared; and true of iso-8859-1, windows-1252,
                         shift_jis and utf-16
  fault:numbers          bit rates, listeners and ids that make no sense
  fault:html-names       names in HTML
  fault:long-names[=BYTES]      a name of 2 million letters
  fault:bidi             names that turn directions and have controls
)";

} // namespace localradio
