/* The threads of VIGManager, in steps small enough that every order of them can be tried. README.md says which lines
 * of the code each step stands for. What is in one `atomic` block is done under one mutex, the manager's or the
 * gate's, or by the service in one go. */

#ifndef CALLS_A
#define CALLS_A 2 /* of the client that destroys the manager in the end */
#endif
#ifndef CALLS_B
#define CALLS_B 1 /* of another client */
#endif
#ifndef CALLS_WITHIN
#define CALLS_WITHIN 1 /* from within the callback, by all threads together */
#endif
#ifndef NOTIFIERS
#define NOTIFIERS 1 /* threads of the device configuration */
#endif
#ifndef NOTIFICATIONS
#define NOTIFICATIONS 1 /* by each of them */
#endif
#ifndef CHECKS
#define CHECKS 2 /* until the watcher gives up */
#endif

#define NONE 0
#define CLIENT_A 1
#define CLIENT_B 2
#define WATCHER 3
#define FIRST_NOTIFIER 4
#define THREADS (FIRST_NOTIFIER + NOTIFIERS)
/* One that fails takes a further number. */
#define NUMBERS (2 * (CALLS_A + CALLS_B + CALLS_WITHIN) + 1)

/* The members of the manager. Callbacks and listeners are told apart by the number of their registration. */
byte callback, listener, watchRequest, subscribing;
bool watching, deregistered, stopping, available;

/* The gate. The registration changes under the mutexes of both. */
byte registration, inside;
bool closed;

/* The device configuration. */
byte registered; /* the listener */
bool everRegistered[NUMBERS];
byte notifying[THREADS]; /* the listener that the thread calls */
byte lockedBy, locks;    /* the thread that holds the lock of the library, and how often */

/* What is asserted of them. */
bool watcherLives, destroyed;
bool delivered[NUMBERS], givenUp[NUMBERS];
byte calling;      /* the thread that is in the callback */
byte latestCalled; /* the registration whose callback was called last */
byte over;         /* the highest number of which the client knows that it is over */
byte promised;     /* the registration that has been made and ended by no call since */
byte callsWithin, idleClients;

/* What each thread keeps for itself. */
#define LOCALS                            \
    byte removed, number, receiver, other; \
    bool failed, admitted, open

/* Nothing, unless the library holds a lock of its own in each call and while it notifies. */
inline lockLibrary() {
#ifdef LIBRARY_LOCKS
    atomic { lockedBy == NONE || lockedBy == me; lockedBy = me; locks++ }
#else
    skip
#endif
}

inline unlockLibrary() {
#ifdef LIBRARY_LOCKS
    atomic {
        locks--;
        if
        :: locks == 0 -> lockedBy = NONE
        :: else
        fi
    }
#else
    skip
#endif
}

inline beginUnsubscribe() {
    if
    :: listener != NONE -> assert(subscribing == NONE); removed = listener; listener = NONE; subscribing = me
    :: else
    fi
}

inline endUnsubscribe() {
    if
    :: removed != NONE ->
        lockLibrary();
        atomic {
            assert(!destroyed);
            if
            :: registered == removed -> registered = NONE
            :: else
            fi
        }
#ifdef REMOVAL_WAITS
        /* For notifications under way, but not for the one that it is called from. */
        do
        :: other < THREADS && (other == me || notifying[other] != removed) -> other++
        :: other == THREADS -> other = 0; break
        od;
#endif
        unlockLibrary();
        atomic { assert(!destroyed); subscribing = NONE; removed = NONE }
    :: else
    fi
}

inline replaceRegistration(hasCallback) {
    registration++;
    callback = (hasCallback -> registration : NONE);
    if
    :: subscribing == NONE -> beginUnsubscribe()
    :: else
    fi
}

inline endRegistration() {
    deregistered = true;
    replaceRegistration(false)
}

inline knowOver(highest) {
    if
    :: highest > over -> over = highest
    :: else
    fi
}

inline registerCallback() {
    atomic {
        assert(!destroyed);
        deregistered = false;
        promised = NONE;
        number = registration + 1;
        replaceRegistration(true)
    }
    endUnsubscribe();
    atomic {
        assert(!destroyed);
        if
        :: stopping || deregistered
        :: else ->
            if
            :: watching
            :: !watching -> assert(!watcherLives); watcherLives = true; watching = true; run watcher()
#ifdef THREADS_FAIL
            :: !watching -> failed = true
#endif
            fi;
            if
            :: failed
            :: else -> watchRequest = registration
            fi
        fi
    }
    if
    :: failed ->
        atomic {
            if
            :: registration == number -> endRegistration()
            :: else
            fi
        }
        endUnsubscribe();
        failed = false
    :: else
    fi;
    atomic {
        knowOver(number - 1);
        if
        :: registration == number -> promised = number
        :: else
        fi;
        number = NONE
    }
}

inline deregisterCallback() {
    atomic { assert(!destroyed); promised = NONE; endRegistration(); number = registration }
    endUnsubscribe();
    if
    :: atomic {
           subscribing == NONE || subscribing == me || inside == me;
           assert(!destroyed);
           assert(registered == NONE || registered > number || subscribing == me || inside == me)
       }
#ifndef PATIENT
    :: true /* two seconds have passed */
#endif
    fi;
    atomic { knowOver(number); number = NONE }
}

inline callManagerFromWithin() {
    if
    :: true
    :: callsWithin < CALLS_WITHIN -> callsWithin++; registerCallback()
    :: callsWithin < CALLS_WITHIN -> callsWithin++; deregisterCallback()
    fi
}

/* From isAwaited to the end of deliver. Reading and parsing touch nothing that is shared. */
inline deliver(serving) {
    atomic {
        assert(!destroyed);
        receiver = (registration == serving -> callback : NONE)
    }
    if
    :: receiver != NONE ->
        atomic {
            assert(!destroyed);
            receiver = (registration == serving -> callback : NONE);
            assert(receiver == NONE || receiver > over)
        }
        if
        :: receiver != NONE ->
            atomic {
                assert(!destroyed && receiver == serving && calling == NONE && receiver >= latestCalled);
                calling = me;
                latestCalled = receiver;
                delivered[receiver] = true
            }
            callManagerFromWithin();
            calling = NONE
        :: else
        fi
    :: else
    fi;
    receiver = NONE
}

inline enterGate(serving) {
    atomic {
        inside == NONE || inside == me || closed || registration != serving;
        open = !closed && registration == serving;
        if
        :: open && inside != me -> inside = me; admitted = true
        :: else
        fi
    }
}

inline leaveGate() {
    atomic {
        if
        :: admitted -> inside = NONE
        :: else
        fi;
        admitted = false;
        open = false
    }
}

/* What a notification does, once the library has decided to call this listener. */
inline handle(notified) {
    enterGate(notified);
    if
    :: open -> deliver(notified)
    :: else
    fi;
    leaveGate()
}

proctype notifier(byte me) {
    LOCALS;
    byte rounds, called;
    do
    :: rounds < NOTIFICATIONS && registered != NONE ->
       lockLibrary();
       atomic {
           called = registered;
           notifying[me] = called;
           rounds++
       }
       if
       :: called != NONE -> handle(called)
       :: else
       fi;
       atomic { notifying[me] = NONE; called = NONE }
       unlockLibrary()
#ifndef REMOVAL_WAITS
    /* A library that does not wait may also call what was removed, even when the manager is gone. */
    :: atomic {
           rounds < NOTIFICATIONS;
           called = 1;
           do
           :: called < NUMBERS - 1 -> called++
           :: everRegistered[called] -> break
           :: called == NUMBERS - 1 && !everRegistered[called] -> called = NONE; break
           od;
           rounds++
       }
       if
       :: called != NONE ->
           lockLibrary();
           handle(called);
           unlockLibrary();
           called = NONE
       :: else
       fi
#endif
    :: rounds == NOTIFICATIONS || destroyed -> break
    od
}

inline subscribe(serving) {
    atomic {
        subscribing == NONE;
        assert(!destroyed);
        if
        :: registration == serving -> listener = serving; subscribing = me
        :: else
        fi
    }
    if
    :: subscribing == me ->
        lockLibrary();
        atomic {
            assert(!destroyed && registered == NONE && !everRegistered[serving]);
            registered = serving;
            everRegistered[serving] = true
        }
        unlockLibrary();
        atomic {
            subscribing = NONE;
            if
            :: registration != serving -> beginUnsubscribe()
            :: else -> subscribed = true
            fi
        }
        endUnsubscribe()
    :: else
    fi
}

proctype watcher() {
    LOCALS;
    byte serving, checks;
    bool subscribed, done;
    byte me = WATCHER;
    do
    :: atomic {
           assert(!destroyed);
           serving = watchRequest;
           watchRequest = NONE;
           if
           :: serving == NONE -> watching = false; watcherLives = false; break
           :: else
           fi
       }
       atomic { assert(!destroyed); done = available && listener != NONE }
       do
       :: done -> break
       :: !done && checks == CHECKS -> givenUp[serving] = true; break
       :: !done && checks < CHECKS -> /* the service is not there */
           checks++;
           atomic { assert(!destroyed); done = watchRequest != NONE }
       :: !done && checks < CHECKS -> /* the service is there */
           if
           :: atomic { registration == serving && callback != NONE; assert(!destroyed) } ->
               lockLibrary(); /* for getConfig */
               unlockLibrary();
               handle(serving)
           :: atomic { !(registration == serving && callback != NONE); assert(!destroyed) }
           fi;
           subscribe(serving);
           if
           :: subscribed -> atomic { assert(!destroyed); available = true }
           :: else
           fi;
           break
       od;
       atomic { checks = 0; done = false; subscribed = false; serving = NONE }
    od
}

inline useManager(calls) {
    do
    :: made < calls -> made++; registerCallback()
    :: made < calls -> made++; deregisterCallback()
    :: made == calls -> break
    od;
    atomic { made = 0; idleClients++ }
}

proctype clientB() {
    LOCALS;
    byte made;
    byte me = CLIENT_B;
    useManager(CALLS_B)
}

/* All calls have returned and nobody works: the latest registration has its delivery, or is over. */
inline expectServed() {
    atomic {
        !watching && calling == NONE && subscribing == NONE;
        assert(callback == NONE || givenUp[callback] ||
               (delivered[callback] && registered == callback && listener == callback));
        assert(promised == NONE || callback == promised);
        assert(callback != NONE || (registered == NONE && listener == NONE))
    }
}

inline destroy() {
    stopping = true;
    !watcherLives;
    closed = true;
    inside == NONE;
    atomic { beginUnsubscribe() }
    endUnsubscribe();
    atomic {
        assert(registered == NONE && !watcherLives && calling == NONE);
        destroyed = true
    }
}

init {
    LOCALS;
    byte made;
    byte me = CLIENT_A;
    atomic {
        run clientB();
        other = FIRST_NOTIFIER;
        do
        :: other < THREADS -> run notifier(other); other++
        :: else -> other = 0; break
        od
    }
    useManager(CALLS_A);
    idleClients == 2;
    if
    :: expectServed()
#ifndef PATIENT
    :: true
#endif
    fi;
    destroy()
}
