// What the person sees around the pictures.

const notices = {
    connecting: ['Temsilciye bağlanılıyor…', 'Birazdan müşteri temsilcimizle görüşeceksiniz.'],
    joined: ['Müşteri Temsilcisi', 'Sesli görüşme sürüyor'],
    ended: ['Görüşme sona erdi', 'Bizimle görüştüğünüz için teşekkür ederiz.'],
    dropped: ['Bağlantı koptu', 'İnternet bağlantınızı denetleyip yeniden deneyin.'],
    refused: ['Görüşmeye katılım reddedildi', 'Bu görüşme için geçerli bir izniniz yok.'],
};

const element = id => document.getElementById(id);

export class Screen {
    /// `buttons`: the toolbar's, by name; undefined: all there are.
    constructor({ audioOnly, buttons, onButton }) {
        this._own = document.querySelector('.own');
        document.body.toggleAttribute('data-audio-only', audioOnly);
        this._timer = 0;
        this._makeToolbar(buttons, audioOnly, onButton);
        this.show('connecting');
    }

    _makeToolbar(wanted, audioOnly, onButton) {
        const toolbar = document.querySelector('.toolbar');
        let shown = 0;
        for (const button of toolbar.querySelectorAll('button')) {
            const name = button.dataset.button;
            button.hidden = (wanted && !wanted.includes(name)) || (audioOnly && name === 'camera');
            shown += button.hidden ? 0 : 1;
            button.addEventListener('click', () => onButton(button.id));
        }
        this._toolbar = shown ? toolbar : null;
    }

    /// One of the notices' names.
    show(name) {
        const known = { dropped: 'failed', refused: 'failed' };
        document.body.dataset.phase = known[name] || name;
        [element('headline').textContent, element('explanation').textContent] = notices[name];
        const isJoined = name === 'joined';
        if (this._toolbar)
            this._toolbar.hidden = !isJoined;
        document.body.toggleAttribute('data-toolbar', Boolean(this._toolbar) && isJoined);
        clearInterval(this._timer);
        if (isJoined)
            this._count();
        else
            document.body.removeAttribute('data-speaking');
    }

    _count() {
        const began = performance.now();
        const two = number => String(number).padStart(2, '0');
        this._timer = setInterval(() => {
            const seconds = Math.floor((performance.now() - began) / 1000);
            element('elapsed').textContent = `${two(Math.floor(seconds / 60))}:${two(seconds % 60)}`;
        }, 250);
    }

    showPortrait(picture) {
        const canvas = element('portrait');
        canvas.getContext('2d').drawImage(picture, 0, 0, canvas.width, canvas.height);
    }

    /// Comes back when the stream's picture plays.
    playRemote(stream) {
        const video = element('remote');
        const playing = new Promise(resolve => {
            const look = () => {
                if (video.videoWidth > 0 && video.readyState >= HTMLMediaElement.HAVE_CURRENT_DATA && !video.paused)
                    resolve();
            };
            for (const name of ['playing', 'resize', 'loadeddata', 'timeupdate'])
                video.addEventListener(name, look);
        });
        video.srcObject = stream;
        // Where pages may not sound before a touch, the picture comes first and the sound with the touch.
        video.play().catch(() => {
            video.muted = true;
            addEventListener('pointerdown', () => { video.muted = false; }, { once: true });
            video.play().catch(() => {});
        });
        return playing;
    }

    showOwn({ track, sendsVideo, sendsAudio }) {
        const video = element('own');
        const shown = video.srcObject ? video.srcObject.getVideoTracks()[0] : null;
        if (shown !== track)
            video.srcObject = track ? new MediaStream([track]) : null;
        this._own.toggleAttribute('data-video', sendsVideo);
        this._own.toggleAttribute('data-audio', sendsAudio);
        element('toggleAudio').setAttribute('aria-pressed', !sendsAudio);
        element('toggleVideo').setAttribute('aria-pressed', !sendsVideo);
    }

    /// How far the representative's mouth is open; 0 between sentences. The bars move with the picture and no oftener: a
    /// style's own animation would have the whole screen painted at its full rate.
    showSpeaking(openness) {
        const speaks = openness > 0;
        document.querySelectorAll('.speech u').forEach((bar, index) => {
            bar.style.transform = `scaleY(${0.3 + 0.7 * openness * (index === 1 ? 1 : 0.65)})`;
        });
        if (document.body.hasAttribute('data-speaking') === speaks)
            return;
        document.body.toggleAttribute('data-speaking', speaks);
        if (!document.body.hasAttribute('data-audio-only'))
            element('activity').textContent = speaks ? 'Konuşuyor' : 'Sizi dinliyor';
    }

    clear() {
        element('remote').srcObject = null;
        element('own').srcObject = null;
    }
}
