// The fields of every record by name and in order, for everything that reads or writes records field by
// field: the black box and the XML files. Stateless, any thread.
#pragma once
#include <concepts>
#include <type_traits>

#include "tagGShowKaroakeTextParam.h"
#include "tagKorviaAudioEffectParam.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaOutputStatistics.h"
#include "tagKorviaShowAlphaMattingParam.h"
#include "tagKorviaShowAudioLevel.h"
#include "tagKorviaShowAudioMixerParam.h"
#include "tagKorviaShowChannelBackgroundInfo.h"
#include "tagKorviaShowChannelSlot.h"
#include "tagKorviaShowComponentInfo.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowLogoInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaShowPresentAnimation.h"
#include "tagKorviaShowPresentPlacement.h"
#include "tagKorviaShowRenderTextParam.h"
#include "tagKorviaShowSourceInfo.h"
#include "tagKorviaShowSourceStatisticsItem.h"
#include "tagKorviaShowTextInfo.h"
#include "tagKorviaShowTextStyle.h"
#include "tagKorviaSourceLinkState.h"
#include "tagKorviaSourceState.h"
#include "tagKorviaWindowInfo.h"
#include "tagZRCFileInfo.h"

namespace korvia {

/// A colour that a record stores as an ARGB word.
template <class Word>
struct ColorWord {
  Word& argb;
};
template <class Word>
ColorWord(Word&) -> ColorWord<Word>;

/// R is the record, const when it is only read.
template <class R, class Record>
concept RecordOf = std::same_as<std::remove_const_t<R>, Record>;

// visitFields(record, visit) calls visit(name, field) for each field. The packed formats are read-only and
// their fields are passed as copies, since a reference to one would not be aligned.

template <class V>
void visitFields(const tagKorviaVideoFormat& r, V&& visit) {
  visit("enable", quint8{r.enable});
  visit("width", qint32{r.width});
  visit("height", qint32{r.height});
  visit("secondEnable", quint8{r.secondEnable});
  visit("secondWidth", qint32{r.secondWidth});
  visit("secondHeight", qint32{r.secondHeight});
  visit("fpsNumerator", qint32{r.fpsNumerator});
  visit("fpsDenominator", qint32{r.fpsDenominator});
  visit("reserved", qint32{r.reserved});
  visit("formatFlag", qint32{r.formatFlag});
}

template <class V>
void visitFields(const tagKorviaAudioFormat& r, V&& visit) {
  visit("enable", quint8{r.enable});
  visit("channels", qint32{r.channels});
  visit("sampleRate", qint32{r.sampleRate});
  visit("bits", qint32{r.bits});
  visit("sampleFormat", r.sampleFormat);
}

template <class V>
void visitFields(const tagKorviaFormatInfo& r, V&& visit) {
  visit("video", r.video);
  visit("audio", r.audio);
}

template <RecordOf<tagKorviaShowEngineInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("renderDevice", r.renderDevice);
  visit("renderAccelerator", r.renderAccelerator);
  visit("format", r.format);
  visit("outputFormat", r.outputFormat);
  visit("audioFormat", r.audioFormat);
  visit("mediaChannelCount", r.mediaChannelCount);
  visit("stageChannelCount", r.stageChannelCount);
  visit("reserved1", r.reserved1);
  visit("reserved2", r.reserved2);
  visit("reserved3", r.reserved3);
  visit("reserved4", r.reserved4);
  visit("pgmDevice", r.pgmDevice);
  visit("pvmDevice", r.pvmDevice);
  visit("reserved5", r.reserved5);
  visit("showDataPath", r.showDataPath);
  visit("cachePath", r.cachePath);
  visit("reserved6", r.reserved6);
  visit("reserved7", r.reserved7);
  visit("reserved8", r.reserved8);
  visit("secondDataPath", r.secondDataPath);
}

template <RecordOf<tagKorviaWindowInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("left", r.left);
  visit("top", r.top);
  visit("right", r.right);
  visit("bottom", r.bottom);
  visit("reserved", r.reserved);
  visit("winId", r.winId);
}

template <RecordOf<tagKorviaShowWindowPackInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("media", r.media);
  visit("stage", r.stage);
  visit("karaoke", r.karaoke);
  visit("pvm", r.pvm);
  visit("pgm", r.pgm);
}

template <RecordOf<tagKorviaShowRenderTextParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("alignment", r.alignment);
  visit("vertical", r.vertical);
  visit("fontSize", r.fontSize);
  visit("fontName", r.fontName);
  visit("bold", r.bold);
  visit("italic", r.italic);
  visit("underline", r.underline);
  visit("wrap", r.wrap);
  visit("outline", r.outline);
  visit("outlineSize", r.outlineSize);
  visit("outlineColor", ColorWord{r.outlineColor});
  visit("gradientAngle", r.gradientAngle);
  visit("gradientBeginColor", ColorWord{r.gradientBeginColor});
  visit("gradientEndColor", ColorWord{r.gradientEndColor});
  visit("text", r.text);
}

template <RecordOf<tagKorviaWindowHWNDInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("title", r.title);
  visit("windowId", r.windowId);
  visit("program", r.program);
}

template <RecordOf<tagKorviaShowSourceInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("kind", r.kind);
  visit("moviePath", r.moviePath);
  visit("movieEndAction", r.movieEndAction);
  visit("movieSwitchChannel", r.movieSwitchChannel);
  visit("moviePGMAction", r.moviePGMAction);
  visit("movieList", r.movieList);
  visit("listEndAction", r.listEndAction);
  visit("listSwitchChannel", r.listSwitchChannel);
  visit("listPGMAction", r.listPGMAction);
  visit("url", r.url);
  visit("urlCache", r.urlCache);
  visit("krmpUrl", r.krmpUrl);
  visit("krmpDecoder", r.krmpDecoder);
  visit("krmpRealtime", r.krmpRealtime);
  visit("imagePath", r.imagePath);
  visit("imageList", r.imageList);
  visit("videoDevName", r.videoDevName);
  visit("videoDevId", r.videoDevId);
  visit("videoDevConnType", r.videoDevConnType);
  visit("reserved1", r.reserved1);
  visit("reserved2", r.reserved2);
  visit("audioDevName", r.audioDevName);
  visit("audioDevId", r.audioDevId);
  visit("sdiCardIndex", r.sdiCardIndex);
  visit("sdiFormat", r.sdiFormat);
  visit("sdiVideoSignal", r.sdiVideoSignal);
  visit("sdiAudioSignal", r.sdiAudioSignal);
  visit("colorBar", r.colorBar);
  visit("color", ColorWord{r.color});
  visit("delayChannel", r.delayChannel);
  visit("delayCachePath", r.delayCachePath);
  visit("delayTime", r.delayTime);
  visit("flashPath", r.flashPath);
  visit("webUrl", r.webUrl);
  visit("officePath", r.officePath);
  visit("pdfPath", r.pdfPath);
  visit("reserved3", r.reserved3);
  visit("textPath", r.textPath);
  visit("textParam", r.textParam);
  visit("windowInfo", r.windowInfo);
  visit("screenIndex", r.screenIndex);
  visit("incomePath", r.incomePath);
  visit("incomeDecoder", r.incomeDecoder);
  visit("incomeRealtime", r.incomeRealtime);
  visit("audioProcessFilter", r.audioProcessFilter);
}

template <RecordOf<tagKorviaShowChannelSlot> R, class V>
void visitFields(R& r, V&& visit) {
  visit("id", r.id);
  visit("name", r.name);
  visit("source", r.source);
  visit("format", r.format);
}

template <RecordOf<tagKorviaShowPresentPlacement> R, class V>
void visitFields(R& r, V&& visit) {
  visit("kind", r.kind);
  visit("key", r.key);
  visit("x", r.x);
  visit("y", r.y);
  visit("width", r.width);
  visit("height", r.height);
}

template <RecordOf<tagKorviaShowAudioLevel> R, class V>
void visitFields(R& r, V&& visit) {
  visit("values", r.values);
}

template <RecordOf<tagKorviaSourceLinkState> R, class V>
void visitFields(R& r, V&& visit) {
  visit("reserved1", r.reserved1);
  visit("reason", r.reason);
  visit("rate", r.rate);
  visit("pictureDuration", r.pictureDuration);
}

template <RecordOf<tagKorviaSourceState> R, class V>
void visitFields(R& r, V&& visit) {
  visit("playing", r.playing);
  visit("reserved1", r.reserved1);
  visit("position", r.position);
  visit("reserved2", r.reserved2);
  visit("reserved3", r.reserved3);
}

template <RecordOf<tagKorviaOutputTargetStatistics> R, class V>
void visitFields(R& r, V&& visit) {
  visit("bitrate", r.bitrate);
}

template <RecordOf<tagKorviaOutputStatisticsBlock> R, class V>
void visitFields(R& r, V&& visit) {
  visit("videoFps", r.videoFps);
  visit("videoBitrate", r.videoBitrate);
  visit("audioRate", r.audioRate);
  visit("audioBitrate", r.audioBitrate);
  visit("encodeDelay", r.encodeDelay);
  visit("videoAudioDrift", r.videoAudioDrift);
  visit("frameType", r.frameType);
  visit("record", r.record);
  visit("http", r.http);
  visit("udp", r.udp);
  visit("hls", r.hls);
  visit("rtmp", r.rtmp);
}

template <RecordOf<tagKorviaOutputStatistics> R, class V>
void visitFields(R& r, V&& visit) {
  visit("reserved", r.reserved);
  visit("blocks", r.blocks);
}

template <RecordOf<tagKorviaShowSourceStatisticsItem> R, class V>
void visitFields(R& r, V&& visit) {
  visit("reserved", r.reserved);
  visit("description", r.description);
  visit("videoRate", r.videoRate);
  visit("audioRate", r.audioRate);
  visit("videoAudioDrift", r.videoAudioDrift);
}

template <RecordOf<tagKorviaAudioProcessParamVolcalCut> R, class V>
void visitFields(R& r, V&& visit) {
  visit("preset", r.preset);
  visit("pan", r.pan);
  visit("level", r.level);
  visit("filterSwitch", r.filterSwitch);
  visit("filterFreq", r.filterFreq);
  visit("filterQ", r.filterQ);
}

template <RecordOf<tagKorviaAudioEffectParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("preset", r.preset);
  visit("pitchSemitones", r.pitchSemitones);
  visit("echoDelayMs", r.echoDelayMs);
  visit("echoFeedback", r.echoFeedback);
  visit("echoMix", r.echoMix);
  visit("ringModulationHz", r.ringModulationHz);
  visit("equalizerDb", r.equalizerDb);
  visit("vocalCut", r.vocalCut);
}

template <RecordOf<tagKorviaShowAudioMixerParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("mixMode", r.mixMode);
  visit("channelEnable", r.channelEnable);
  visit("channelVolume", r.channelVolume);
  visit("karaokeVolume", r.karaokeVolume);
  visit("channelEffect", r.channelEffect);
  visit("karaokeEffect", r.karaokeEffect);
  visit("pgmVolume", r.pgmVolume);
  visit("pvmVolume", r.pvmVolume);
}

template <RecordOf<tagKorviaShowAlphaMattingParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("mode", r.mode);
  visit("preBlur", r.preBlur);
  visit("keyColor", r.keyColor);
  visit("screenBalance", r.screenBalance);
  visit("edgeRadius", r.edgeRadius);
  visit("edgeTolerance", r.edgeTolerance);
  visit("clipBlack", r.clipBlack);
  visit("clipWhite", r.clipWhite);
  visit("postBlur", r.postBlur);
  visit("dilateDistance", r.dilateDistance);
  visit("featherDistance", r.featherDistance);
  visit("reserved1", r.reserved1);
  visit("despillFactor", r.despillFactor);
  visit("despillBalance", r.despillBalance);
  visit("maskFile", r.maskFile);
  visit("aiScreenBalance", r.aiScreenBalance);
  visit("aiEdgeRadius", r.aiEdgeRadius);
  visit("aiEdgeTolerance", r.aiEdgeTolerance);
  visit("aiClipBlack", r.aiClipBlack);
  visit("aiClipWhite", r.aiClipWhite);
  visit("aiPostBlur", r.aiPostBlur);
  visit("aiDilateDistance", r.aiDilateDistance);
  visit("aiFeatherDistance", r.aiFeatherDistance);
  visit("reserved2", r.reserved2);
  visit("aiDespillFactor", r.aiDespillFactor);
  visit("aiDespillBalance", r.aiDespillBalance);
}

template <RecordOf<tagKorviaShowChannelBackgroundInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("type", r.type);
  visit("color", ColorWord{r.color});
  visit("imagePath", r.imagePath);
  visit("videoPath", r.videoPath);
}

template <RecordOf<tagGShowKaroakeTextParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("fontName", r.fontName);
  visit("fontSize", r.fontSize);
  visit("colorPreset", r.colorPreset);
  visit("unplayedUpperColor", r.unplayedUpperColor);
  visit("unplayedLowerColor", r.unplayedLowerColor);
  visit("playedUpperColor", r.playedUpperColor);
  visit("playedLowerColor", r.playedLowerColor);
  visit("borderColor", r.borderColor);
  visit("reserved", r.reserved);
}

template <RecordOf<tagKorviaShowEngineFigures::StageTime> R, class V>
void visitFields(R& r, V&& visit) {
  visit("p50Ms", r.p50Ms);
  visit("p99Ms", r.p99Ms);
  visit("maxMs", r.maxMs);
  visit("maxOfRunMs", r.maxOfRunMs);
}

template <RecordOf<tagKorviaShowEngineFigures::Loudness> R, class V>
void visitFields(R& r, V&& visit) {
  visit("momentaryLufs", r.momentaryLufs);
  visit("shortTermLufs", r.shortTermLufs);
  visit("integratedLufs", r.integratedLufs);
  visit("truePeakDbtp", r.truePeakDbtp);
}

template <RecordOf<tagKorviaShowEngineFigures::LiveSource> R, class V>
void visitFields(R& r, V&& visit) {
  visit("isLive", r.isLive);
  visit("driftPpm", r.driftPpm);
  visit("latencyMs", r.latencyMs);
  visit("connections", r.connections);
  visit("stampJumps", r.stampJumps);
  visit("missedFrames", r.missedFrames);
}

template <RecordOf<tagKorviaShowEngineFigures::SoundDevice> R, class V>
void visitFields(R& r, V&& visit) {
  visit("playing", r.playing);
  visit("driftPpm", r.driftPpm);
  visit("breaks", r.breaks);
}

template <RecordOf<tagKorviaShowTargetReport> R, class V>
void visitFields(R& r, V&& visit) {
  visit("name", r.name);
  visit("state", r.state);
  visit("reason", r.reason);
  visit("upSeconds", r.upSeconds);
  visit("retrySeconds", r.retrySeconds);
  visit("bitrate", r.bitrate);
}

template <RecordOf<tagKorviaShowOutputReport> R, class V>
void visitFields(R& r, V&& visit) {
  visit("state", r.state);
  visit("reason", r.reason);
  visit("fileName", r.fileName);
  visit("droppedFrames", r.droppedFrames);
  visit("writtenMs", r.writtenMs);
  visit("writtenBytes", r.writtenBytes);
  visit("roomSeconds", r.roomSeconds);
  visit("verifiedMs", r.verifiedMs);
  visit("warning", r.warning);
  visit("targets", r.targets);
}

template <RecordOf<tagKorviaShowEngineFigures> R, class V>
void visitFields(R& r, V&& visit) {
  visit("frames", r.frames);
  visit("lateTicks", r.lateTicks);
  visit("repeatedFrames", r.repeatedFrames);
  visit("droppedStripPictures", r.droppedStripPictures);
  visit("heldFilmFrames", r.heldFilmFrames);
  visit("skippedFilmFrames", r.skippedFilmFrames);
  visit("reducedSources", r.reducedSources);
  visit("cpuLoad", r.cpuLoad);
  visit("fps", r.fps);
  visit("fpsOfRun", r.fpsOfRun);
  visit("sources", r.sources);
  visit("mix", r.mix);
  visit("items", r.items);
  visit("audio", r.audio);
  visit("monitors", r.monitors);
  visit("handOver", r.handOver);
  visit("tick", r.tick);
  visit("loudness", r.loudness);
  visit("programDevice", r.programDevice);
  visit("previewDevice", r.previewDevice);
  visit("sourceCount", r.sourceCount);
  visit("liveSources", r.liveSources);
  visit("switchPosition", r.switchPosition);
  visit("pvmChannel", r.pvmChannel);
  visit("pgmChannel", r.pgmChannel);
  visit("recording", r.recording);
  visit("streaming", r.streaming);
  visit("outputs", r.outputs);
  visit("deviceOutputs", r.deviceOutputs);
}

template <RecordOf<tagKorviaShowEncodeParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("reserved1", r.reserved1);
  visit("accelerator", r.accelerator);
  visit("reserved2", r.reserved2);
  visit("reserved3", r.reserved3);
  visit("reserved4", r.reserved4);
  visit("reserved5", r.reserved5);
  visit("videoBitrate", r.videoBitrate);
  visit("reserved6", r.reserved6);
  visit("reserved7", r.reserved7);
  visit("reserved8", r.reserved8);
  visit("reserved9", r.reserved9);
  visit("reserved10", r.reserved10);
  visit("reserved11", r.reserved11);
  visit("reserved12", r.reserved12);
  visit("reserved13", r.reserved13);
  visit("reserved14", r.reserved14);
  visit("reserved15", r.reserved15);
  visit("reserved16", r.reserved16);
  visit("audioBitrate", r.audioBitrate);
  visit("reserved17", r.reserved17);
}

template <RecordOf<tagKorviaShowOutputItem> R, class V>
void visitFields(R& r, V&& visit) {
  visit("kind", r.kind);
  visit("recordActive", r.recordActive);
  visit("recordPath", r.recordPath);
  visit("recordNameFormat", r.recordNameFormat);
  visit("recordTimeFormat", r.recordTimeFormat);
  visit("cutDuration", r.cutDuration);
  visit("recordEncapsulation", r.recordEncapsulation);
  visit("httpEnable", r.httpEnable);
  visit("httpPort", r.httpPort);
  visit("httpPath", r.httpPath);
  visit("reserved1", r.reserved1);
  visit("reserved2", r.reserved2);
  visit("reserved3", r.reserved3);
  visit("httpEncapsulation", r.httpEncapsulation);
  visit("udpEnable", r.udpEnable);
  visit("udpAddress", r.udpAddress);
  visit("udpPort", r.udpPort);
  visit("udpTtl", r.udpTtl);
  visit("udpBindInterface", r.udpBindInterface);
  visit("hlsEnable", r.hlsEnable);
  visit("hlsSegmentLength", r.hlsSegmentLength);
  visit("hlsSegmentNumber", r.hlsSegmentNumber);
  visit("hlsSplitAnywhere", r.hlsSplitAnywhere);
  visit("hlsTemporaryFolder", r.hlsTemporaryFolder);
  visit("hlsPath", r.hlsPath);
  visit("rtmp0Enable", r.rtmp0Enable);
  visit("rtmp0Url", r.rtmp0Url);
  visit("reserved4", r.reserved4);
  visit("reserved5", r.reserved5);
  visit("rtmp0ProtocolVersion", r.rtmp0ProtocolVersion);
  visit("rtmp1Enable", r.rtmp1Enable);
  visit("rtmp1Url", r.rtmp1Url);
  visit("reserved6", r.reserved6);
  visit("reserved7", r.reserved7);
  visit("rtmp1ProtocolVersion", r.rtmp1ProtocolVersion);
  visit("rtmpLocalEnable", r.rtmpLocalEnable);
  visit("rtmpLocalPath", r.rtmpLocalPath);
  visit("reserved8", r.reserved8);
  visit("reserved9", r.reserved9);
  visit("reserved10", r.reserved10);
  visit("reserved11", r.reserved11);
  visit("reserved12", r.reserved12);
  visit("livePath", r.livePath);
  visit("reserved13", r.reserved13);
  visit("secondPort", r.secondPort);
  visit("secondPath", r.secondPath);
  visit("virtualCameraEnable", r.virtualCameraEnable);
  visit("sdiEnable", r.sdiEnable);
  visit("sdiDeviceIndex", r.sdiDeviceIndex);
  visit("sdiFormat", r.sdiFormat);
  visit("sdiSignal", r.sdiSignal);
  visit("reserved14", r.reserved14);
  visit("reserved15", r.reserved15);
  visit("reserved16", r.reserved16);
  visit("reserved17", r.reserved17);
  visit("tsFolder", r.tsFolder);
  visit("reserved18", r.reserved18);
  visit("reserved19", r.reserved19);
  visit("secondAddress", r.secondAddress);
  visit("thirdPort", r.thirdPort);
  visit("reserved20", r.reserved20);
  visit("reserved21", r.reserved21);
  visit("ndiEnable", r.ndiEnable);
  visit("ndiName", r.ndiName);
  visit("reserved22", r.reserved22);
}

template <RecordOf<tagKorviaShowOutputParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("active", r.active);
  visit("encode", r.encode);
  visit("items", r.items);
}

template <RecordOf<tagKorviaShowPresentAnimation> R, class V>
void visitFields(R& r, V&& visit) {
  visit("effect", r.effect);
  visit("start", r.start);
  visit("duration", r.duration);
  visit("curve", r.curve);
}

template <RecordOf<tagKorviaShowTextStyle> R, class V>
void visitFields(R& r, V&& visit) {
  visit("preset", r.preset);
  visit("fontName", r.fontName);
  visit("fontSize", r.fontSize);
  visit("colorMode", r.colorMode);
  visit("solidColor", ColorWord{r.solidColor});
  visit("gradientBeginColor", ColorWord{r.gradientBeginColor});
  visit("gradientEndColor", ColorWord{r.gradientEndColor});
  visit("texturePath", r.texturePath);
  visit("shadowColor", ColorWord{r.shadowColor});
  visit("shadowDistanceX", r.shadowDistanceX);
  visit("shadowDistanceY", r.shadowDistanceY);
  visit("shadowBlur", r.shadowBlur);
  visit("outlineColor", ColorWord{r.outlineColor});
  visit("outlineSize", r.outlineSize);
  visit("outlineBlur", r.outlineBlur);
}

template <RecordOf<tagKorviaShowTextInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("id", r.id);
  visit("text", r.text);
  visit("timeFormat", r.timeFormat);
  visit("x", r.x);
  visit("y", r.y);
  visit("width", r.width);
  visit("height", r.height);
  visit("hAlign", r.hAlign);
  visit("vAlign", r.vAlign);
  visit("scrollEndX", r.scrollEndX);
  visit("scrollEndY", r.scrollEndY);
  visit("scrollTime", r.scrollTime);
  visit("enter", r.enter);
  visit("exit", r.exit);
  visit("style", r.style);
}

template <RecordOf<tagKorviaShowLogoInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("id", r.id);
  visit("path", r.path);
  visit("scaleX", r.scaleX);
  visit("scaleY", r.scaleY);
  visit("x", r.x);
  visit("y", r.y);
  visit("rotation", r.rotation);
  visit("alpha", r.alpha);
  visit("enter", r.enter);
  visit("exit", r.exit);
}

template <RecordOf<tagKorviaShowPresentTimelineInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("name", r.name);
  visit("caption", r.caption);
  visit("mode", r.mode);
  visit("firstIndex", r.firstIndex);
  visit("lastIndex", r.lastIndex);
  visit("reserved", r.reserved);
}

template <RecordOf<tagKorviaShowComponentScene> R, class V>
void visitFields(R& r, V&& visit) {
  visit("id", r.id);
  visit("projectFolder", r.projectFolder);
  visit("sceneFile", r.sceneFile);
  visit("reserved1", r.reserved1);
  visit("reserved2", r.reserved2);
  visit("reserved3", r.reserved3);
  visit("reserved4", r.reserved4);
  visit("reserved5", r.reserved5);
  visit("reserved6", r.reserved6);
  visit("reserved7", r.reserved7);
  visit("reserved8", r.reserved8);
  visit("reserved9", r.reserved9);
  visit("reserved10", r.reserved10);
  visit("reserved11", r.reserved11);
  visit("reserved12", r.reserved12);
  visit("reserved13", r.reserved13);
  visit("reserved14", r.reserved14);
  visit("reserved15", r.reserved15);
  visit("reserved16", r.reserved16);
  visit("reserved17", r.reserved17);
}

template <RecordOf<tagKorviaComponentItemParam> R, class V>
void visitFields(R& r, V&& visit) {
  visit("caption", r.caption);
  visit("node", r.node);
  visit("value", r.value);
  visit("values", r.values);
  visit("textInfo", r.textInfo);
}

template <RecordOf<tagKorviaShowComponentInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("name", r.name);
  visit("category", r.category);
  visit("scene", r.scene);
  visit("enterTimeline", r.enterTimeline);
  visit("exitTimeline", r.exitTimeline);
  visit("texts", r.texts);
  visit("images", r.images);
  visit("actions", r.actions);
}

template <RecordOf<tagZRCWordInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("text", r.text);
  visit("start", r.start);
  visit("duration", r.duration);
  visit("reserved", r.reserved);
}

template <RecordOf<tagZRCLineInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("index", r.index);
  visit("text", r.text);
  visit("start", r.start);
  visit("duration", r.duration);
  visit("reserved", r.reserved);
  visit("words", r.words);
}

template <RecordOf<tagZRCFileInfo> R, class V>
void visitFields(R& r, V&& visit) {
  visit("title", r.title);
  visit("artist", r.artist);
  visit("timeDiff", r.timeDiff);
  visit("lines", r.lines);
}

}  // namespace korvia
