// The course of one call, from the page's address to its end.

import { readAddress } from './address.js';
import { Call } from './call.js';
import { Contact } from './contact.js';
import { Embedder } from './embedder.js';
import { Media } from './media.js';
import { Representative } from './representative.js';
import { Screen } from './screen.js';
import { Voice } from './voice.js';

const patience = 15000;
const embedder = new Embedder();
const wanted = readAddress();
const audioOnly = Boolean(wanted.config.startAudioOnly);
const contact = new Contact();
const representative = new Representative();
const media = new Media(mediaChanged);
const buttons = wanted.config.toolbarButtons || wanted.interfaceConfig.TOOLBAR_BUTTONS;
const screen = new Screen({
    audioOnly, buttons: Array.isArray(buttons) ? buttons : undefined, onButton: name => obey(name, []),
});
let call = null;
let voice = null;
let isJoined = false;
let isOver = false;
let room = '';

function mediaChanged() {
    if (isOver)
        return;
    for (const kind of ['audio', 'video']) {
        if (call)
            call.send(kind, media.track(kind));
    }
    screen.showOwn({ track: media.track('video'), sendsVideo: media.sends('video'), sendsAudio: media.sends('audio') });
}

function sent() {
    return { video: media.sends('video'), audio: media.sends('audio') };
}

// Everything that the call holds of the machine is given back at its end, the camera's light above all.
function stop(notice) {
    isOver = true;
    contact.leave();
    media.close();
    representative.stop();
    if (call)
        call.close();
    if (voice)
        voice.close();
    screen.clear();
    screen.show(notice);
}

function hangUp() {
    if (isOver)
        return;
    stop('ended');
    if (isJoined)
        embedder.emit('videoConferenceLeft', { roomName: room });
    embedder.emit('readyToClose', {});
}

function fail(name, message, notice) {
    if (isOver)
        return;
    stop(notice);
    embedder.emit('errorOccurred', { error: { name, type: 'CONNECTION', message, isFatal: true, details: {} } });
}

const drop = () => fail('connection.droppedError', 'The connection to the server was lost.', 'dropped');

async function obey(name, values) {
    if (isOver)
        return;
    if (name === 'hangup') {
        hangUp();
    } else if (name === 'displayName') {
        wanted.displayName = String(values[0] || '');
    } else if (name === 'toggleAudio' || name === 'toggleVideo') {
        const kind = name === 'toggleAudio' ? 'audio' : 'video';
        if (kind === 'video' && audioOnly)
            return;
        const before = media.muted[kind];
        await media.toggle(kind);
        if (!isOver && media.muted[kind] !== before)
            embedder.emit(`${kind}MuteStatusChanged`, { muted: media.muted[kind] });
    }
}

async function connect() {
    voice = new Voice();
    representative.onSpeech = openness => {
        voice.follow(openness);
        if (isJoined)
            screen.showSpeaking(openness);
    };
    call = new Call({ video: !audioOnly, onLost: drop });
    mediaChanged();
    representative.start({ picture: !audioOnly });
    await call.connect(audioOnly ? [voice.track] : [voice.track, representative.track()]);
    const playing = screen.playRemote(call.received);
    // A machine without any network finds no way to itself, and then nothing at all happens.
    const tooLate = new Promise((resolve, reject) => {
        setTimeout(() => reject(new Error('The call did not connect.')), patience);
    });
    await Promise.race([audioOnly ? call.connected : playing, tooLate]);
}

function joined(id) {
    isJoined = true;
    screen.show('joined');
    embedder.emit('videoConferenceJoined', { roomName: room, id, displayName: wanted.displayName, avatarURL: '' });
    embedder.emit('participantJoined', { id: 'representative', displayName: 'Müşteri Temsilcisi' });
}

async function run() {
    screen.showPortrait(representative.portrait());
    let entered;
    try {
        entered = await contact.enter(wanted);
    } catch {
        drop();
        return;
    }
    if (isOver)
        return;
    if (!entered.accepted) {
        fail('connection.passwordRequired', 'The token was refused.', 'refused');
        return;
    }
    room = entered.room;
    contact.keep({ media: sent, isJoined: () => isJoined, onEnd: state => (state === 'hungUp' ? hangUp() : drop()) });
    await media.open({
        audio: !wanted.config.startWithAudioMuted, video: !audioOnly && !wanted.config.startWithVideoMuted,
    });
    if (!isOver)
        await connect();
    if (isOver)
        return;
    await contact.join(sent()).catch(() => {}); // whether the server is gone, the next contact tells
    if (!isOver)
        joined(entered.call);
}

embedder.onCommand = obey;
run().catch(error => fail('connection.otherError', String(error && error.message), 'dropped'));
